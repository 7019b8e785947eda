#include "hvl/streams.h"

const char* vqsStatusText(int status) {
  switch (status) {
  case VQS_STATUS_OK:
    return "no error";
  case VQS_STATUS_NULL_POINTER:
    return "a required pointer is null";
  case VQS_STATUS_BAD_STREAM:
    return "the handle is not a live stream";
  case VQS_STATUS_BAD_METHOD:
    return "the distribution has no such method";
  case VQS_STATUS_UNKNOWN_ENGINE:
    return "no engine has this identifier";
  case VQS_STATUS_BAD_COUNT:
    return "a count is negative or too large";
  case VQS_STATUS_BAD_PARAMETER:
    return "a parameter is out of range or not a number";
  case VQS_STATUS_UNSUPPORTED_PAIR:
    return "this engine does not serve this distribution";
  case VQS_STATUS_SKIP_UNSUPPORTED:
    return "this engine cannot skip ahead";
  case VQS_STATUS_LEAPFROG_UNSUPPORTED:
    return "this engine cannot leapfrog";
  case VQS_STATUS_FILE_OPEN:
    return "the file cannot be opened or created";
  case VQS_STATUS_FILE_WRITE:
    return "writing the file failed";
  case VQS_STATUS_FILE_READ:
    return "reading the file failed";
  case VQS_STATUS_STATE_FORMAT:
    return "not a saved state of a known version and engine";
  case VQS_STATUS_STATE_SIZE:
    return "the saved state has a wrong size";
  case VQS_STATUS_STATE_CHECKSUM:
    return "the saved state's checksum does not match";
  case VQS_STATUS_STATE_RANGE:
    return "a field of the saved state is out of its range";
  case VQS_STATUS_NO_MEMORY:
    return "out of memory";
  case VQS_STATUS_BAD_ISA:
    return "HVL_ISA names an instruction set that is unknown or not available";
  case VQS_STATUS_INTERNAL:
    return "an unexpected failure inside the library";
  case VQS_STATUS_FILE_MISSING:
    return "there is no such file or folder";
  case VQS_STATUS_FILE_PERMISSION:
    return "no permission to access the file";
  case VQS_STATUS_SOURCE_FAILED:
    return "the source of nondeterministic words fails or is stuck";
  default:
    return "unknown status";
  }
}
