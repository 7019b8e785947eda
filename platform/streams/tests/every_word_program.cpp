// streams_every_word [stride]: every method in float over all words of every engine, or each stride-th, and in
// double over a 1009th of them.
#include <cstdio>
#include <cstdlib>

#include "every_word.hpp"

int main(int count, char** arguments) {
  const std::uint64_t stride = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 1;
  if (stride == 0) {
    std::fprintf(stderr, "usage: streams_every_word [stride]\n");
    return 2;
  }
  const auto report = hvl::streams::test::try_words(stride, 1009);
  for (const std::string& line : report.not_finite)
    std::printf("not finite: %s\n", line.c_str());
  std::printf("%llu words tried\n", static_cast<unsigned long long>(report.tried));
  return report.not_finite.empty() ? 0 : 1;
}
