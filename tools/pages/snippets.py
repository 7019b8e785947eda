#!/usr/bin/env python3
"""Makes one C++ program of all pieces of C++ in README.md and docs/, each a function of its own that runs.
usage: snippets.py PROGRAM.cpp

A piece sees what HEAD declares; what it includes goes to the top. Compilers speak of the page's lines."""
import pathlib
import re
import sys

from sources import fences_of, pages_of

HEAD = """\
#include <kestro/hvl/rng.hpp>

#include <cmath>
#include <cstdio>
#include <exception>
#include <vector>
{includes}
namespace rng = kestro::hvl::rng;

namespace {{

constexpr std::int64_t n = 1000;
constexpr std::uint32_t rank = 3;

// What pieces of code may use without declaring it.
struct snippet {{
  sycl::queue queue{{sycl::cpu_selector_v}};
  rng::philox4x32x10 engine{{queue, 42}};
  float* numbers = sycl::malloc_shared<float>(n, queue);
  double* doubles = sycl::malloc_shared<double>(n, queue);
  std::int32_t* integers = sycl::malloc_shared<std::int32_t>(n, queue);
  std::uint32_t* words = sycl::malloc_shared<std::uint32_t>(n, queue);

  ~snippet() {{
    queue.wait();
    for (void* memory : {{static_cast<void*>(numbers), static_cast<void*>(doubles), static_cast<void*>(integers),
                         static_cast<void*>(words)}})
      sycl::free(memory, queue);
  }}
"""

TAIL = """
}};

const struct {{
  const char* where;
  void (snippet::*run)();
}} snippets[] = {{
{rows}
}};

}} // namespace

int main() {{
  int failed = 0;
  for (const auto& one : snippets) {{
    try {{
      (snippet().*one.run)();
    }} catch (const std::exception& error) {{
      std::printf("%s: %s\\n", one.where, error.what());
      ++failed;
    }}
  }}
  std::printf("%zu pieces of code ran, %d failed\\n", sizeof(snippets) / sizeof(snippets[0]), failed);
  return failed != 0;
}}
"""


def main():
    root = pathlib.Path(__file__).resolve().parents[2]
    includes, functions, rows = [], "", []
    for page in pages_of(root):
        name = page.relative_to(root).as_posix()
        if name != "README.md" and not name.startswith("docs/"):
            continue
        for line, language, text in fences_of(page.read_text()):
            if language != "cpp":
                continue
            includes += re.findall(r"^#include <.*>$", text, re.MULTILINE)
            body = re.sub(r"^#include <.*>$", "", text, flags=re.MULTILINE)
            functions += f"\n  void snippet_{len(rows)}() {{\n#line {line} \"{name}\"\n{body}  }}\n"
            rows.append(f"    {{\"{name}:{line}\", &snippet::snippet_{len(rows)}}},")
    program = (HEAD.format(includes="\n".join(dict.fromkeys(includes))) + functions +
               TAIL.format(rows="\n".join(rows)))
    pathlib.Path(sys.argv[1]).write_text(program)


if __name__ == "__main__":
    main()
