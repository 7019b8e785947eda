// Every misuse has its status and changes nothing.
#include <algorithm>
#include <cmath>
#include <limits>

#include "support.hpp"

namespace hvl::streams::test {
namespace {

class misuse : public each_engine {};

TEST_P(misuse, of_a_vector_generator_leaves_stream_and_output_alone) {
  owned_stream stream(id());
  stream.bits(3);
  const auto before = stream.saved();
  float f[4] = {-7, -7, -7, -7};
  double d[1] = {-7};
  std::int32_t i[1] = {-7};
  std::uint32_t u[1] = {7};
  std::uint64_t w[1] = {7};
  const float nan = std::nanf("");
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(vsRngUniform_64(0, nullptr, 1, f, 0, 1), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(vsRngUniform_64(0, stream, 1, nullptr, 0, 1), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(vsRngUniform_64(0, stream, -1, f, 0, 1), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(vsRngUniform_64(1, stream, 1, f, 0, 1), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(vsRngUniform_64(0, stream, 1, f, 1, 1), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vsRngUniform_64(0, stream, 1, f, nan, 1), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vsRngUniform_64(0, stream, 1, f, 0, nan), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vsRngUniform_64(0, stream, 1, f, -3e38f, 3e38f), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vsRngUniform_64(0, stream, 1, f, 2e38f, 3e38f), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vdRngUniform_64(0, stream, 1, d, -1.7e308, -1e308), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vdRngUniform_64(0, stream, 1, d, -infinity, 1), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(vdRngUniform_64(0, stream, 1, d, 0, infinity), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(viRngUniform_64(0, stream, 1, i, 5, 5), VQS_STATUS_BAD_PARAMETER);
  EXPECT_EQ(viRngUniformU_64(2, stream, 1, u, 0, 5), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngUniformBits_64(VQS_METHOD_UNIFORM_ACCURATE, stream, 1, u), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(viRngUniformBits64_64(0, stream, -1, w), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(viRngUniformBits64_64(5, stream, 1, w), VQS_STATUS_BAD_METHOD);
  EXPECT_EQ(f[0], -7);
  EXPECT_EQ(d[0], -7);
  EXPECT_EQ(i[0], -7);
  EXPECT_EQ(u[0], 7u);
  EXPECT_EQ(w[0], 7u);
  EXPECT_EQ(stream.saved(), before);
  EXPECT_EQ(vsRngUniform_64(0, stream, 0, f, 0, 1), VQS_STATUS_OK);
  EXPECT_EQ(f[0], -7);
  EXPECT_EQ(stream.saved(), before);
}

TEST_P(misuse, uniform_bits_are_refused_where_the_words_are_not_bits) {
  const bool served = id() != VQS_ENGINE_MCG31M1 && id() != VQS_ENGINE_MRG32K3A &&
                      id() != VQS_ENGINE_WICHMANN_HILL && id() != VQS_ENGINE_R250 &&
                      id() != VQS_ENGINE_SOBOL && id() != VQS_ENGINE_NIEDERREITER;
  owned_stream stream(id());
  const auto before = stream.saved();
  std::uint32_t u[1] = {7};
  std::uint64_t w[1] = {7};
  const int expected = served ? VQS_STATUS_OK : VQS_STATUS_UNSUPPORTED_PAIR;
  EXPECT_EQ(viRngUniformBits32_64(0, stream, 1, u), expected);
  EXPECT_EQ(viRngUniformBits64_64(0, stream, 1, w), expected);
  EXPECT_EQ(stream.saved() == before, !served);
  EXPECT_EQ(w[0] == 7, !served);
}

TEST_P(misuse, of_a_stream_has_its_status) {
  owned_stream stream(id());
  const auto before = stream.saved();
  EXPECT_EQ(vqsSkipAheadStreamEx_64(stream, -1, nullptr), VQS_STATUS_NULL_POINTER);
  const std::uint64_t words[] = {1};
  EXPECT_EQ(vqsSkipAheadStreamEx_64(stream, -1, words), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(vqsSkipAheadStream_64(stream, 0),
            offers_skips(stream) ? VQS_STATUS_OK : VQS_STATUS_SKIP_UNSUPPORTED);
  EXPECT_EQ(vqsAdvanceStream_64(stream, -1, words), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(vqsAdvanceStream_64(stream, 1, nullptr), VQS_STATUS_NULL_POINTER);
  const bool leaps =
      id() == VQS_ENGINE_MCG31M1 || id() == VQS_ENGINE_MCG59 || id() == VQS_ENGINE_WICHMANN_HILL;
  EXPECT_EQ(vqsLeapfrogStream_64(stream, 1, 0),
            leaps ? VQS_STATUS_BAD_PARAMETER : VQS_STATUS_LEAPFROG_UNSUPPORTED);
  EXPECT_EQ(vqsLeapfrogStream_64(stream, 0, 1), leaps ? VQS_STATUS_OK : VQS_STATUS_LEAPFROG_UNSUPPORTED);
  const std::uint32_t seeds[] = {1};
  vqs_stream out = nullptr;
  EXPECT_EQ(vqsNewStreamEx_64(&out, id(), -1, seeds), VQS_STATUS_BAD_COUNT);
  EXPECT_EQ(vqsNewStreamEx_64(&out, id(), 1, nullptr), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(vqsCopyStream_64(nullptr, stream), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(stream.saved(), before);
}

HVL_STREAMS_FOR_EACH_ENGINE(misuse);

TEST(misuse_without_engine, null_foreign_and_dead_handles_are_refused) {
  vqs_stream stream = nullptr;
  EXPECT_EQ(vqsNewStream_64(nullptr, VQS_ENGINE_PHILOX4X32X10, 1), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(vqsNewStream_64(&stream, 4711, 1), VQS_STATUS_UNKNOWN_ENGINE);
  EXPECT_EQ(vqsDeleteStream_64(&stream), VQS_STATUS_NULL_POINTER);
  EXPECT_EQ(vqsEngineOfStream(nullptr), VQS_STATUS_NULL_POINTER);
  std::uint32_t foreign[32] = {1, 2, 3};
  const auto handle = static_cast<vqs_stream>(foreign);
  float f = -7;
  EXPECT_EQ(vqsEngineOfStream(handle), VQS_STATUS_BAD_STREAM);
  EXPECT_EQ(vqsGetStreamSize_64(handle), VQS_STATUS_BAD_STREAM);
  EXPECT_EQ(vqsCopyStream_64(&stream, handle), VQS_STATUS_BAD_STREAM);
  EXPECT_EQ(vqsSkipAheadStream_64(handle, 1), VQS_STATUS_BAD_STREAM);
  EXPECT_EQ(vqsLeapfrogStream_64(handle, 0, 1), VQS_STATUS_BAD_STREAM);
  EXPECT_EQ(vsRngUniform_64(0, handle, 1, &f, 0, 1), VQS_STATUS_BAD_STREAM);
  stream = handle;
  EXPECT_EQ(vqsDeleteStream_64(&stream), VQS_STATUS_BAD_STREAM);
  EXPECT_EQ(f, -7);
}

TEST(misuse_without_engine, every_status_has_a_text_of_its_own) {
  std::vector<std::string> texts;
  for (int status = VQS_STATUS_OK; status >= VQS_STATUS_SOURCE_FAILED; --status) {
    const std::string text = vqsStatusText(status);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), text), 0) << text;
    EXPECT_NE(text, vqsStatusText(1));
    texts.push_back(text);
  }
  EXPECT_STREQ(vqsStatusText(-1000), vqsStatusText(1));
}

} // namespace
} // namespace hvl::streams::test
