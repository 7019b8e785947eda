#pragma once

/// An interop object of another OpenMP runtime: this test program's.
struct fake_interop {
  explicit fake_interop(long runtime, int lookup_error = 0)
      : foreign_runtime(runtime), completion_error(lookup_error) {}
  fake_interop(const fake_interop&) = delete;

  unsigned magic = 0xFA4E;
  long foreign_runtime;
  int completion_error; ///< of the lookup of the completion function
  int completions = 0;
};
