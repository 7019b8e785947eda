// What SIGINT (Ctrl-C), SIGTERM and SIGHUP leave behind: no half-written file, no half-drawn line.
#pragma once

namespace hvl_rng {

// From now on such a signal tidies up, then ends the program as it does by default. One that was ignored, as
// nohup does, stays so.
void tidy_up_on_signals();

// The file to remove, or null. The text must live until another call replaces it.
void remove_on_signal(const char* file);

// Whether standard error stands in the middle of a line, which then needs an end.
void end_line_on_signal(bool needed);

} // namespace hvl_rng
