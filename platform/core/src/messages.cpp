// The catalogue of numbered messages.
#include "line.hpp"

namespace {

struct message {
  int number;
  const char* format;
};

constexpr message catalogue[] = {
    {HVL_SERV_MESSAGE_NO_SYMBOL, "Kestro HVL ERROR: symbol %s cannot be found\n"},
    {HVL_SERV_MESSAGE_TOO_MANY_CLEANUPS, "Kestro HVL ERROR: too many clean-up functions are registered\n"},
};

} // namespace

int hvl_serv_print(int kind, int message_number, ...) {
  for (const message& entry : catalogue)
    if (entry.number == message_number) {
      std::va_list arguments;
      va_start(arguments, message_number);
      const int written = hvl::core::write_text(hvl::core::stream_of(kind), entry.format, arguments);
      va_end(arguments);
      return written;
    }
  hvl_serv_print_text(kind, "Kestro HVL ERROR: there is no message number %d\n", message_number);
  return HVL_SERV_BAD_ARGUMENT;
}
