// A locale that writes 1,5 where C writes 1.5.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

// Compiled on the spot (Debian package locales), for no machine must have one. Throws where that fails: a test
// without it would show nothing.
class comma_locale {
 public:
  comma_locale() {
    std::string pattern = (std::filesystem::temp_directory_path() / "hvl_locale_XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
      throw std::runtime_error("no folder for a locale");
    folder_ = pattern;
    std::ofstream(folder_ / "source")
        << "LC_CTYPE\ncopy \"POSIX\"\nEND LC_CTYPE\nLC_NUMERIC\ndecimal_point \",\"\n"
           "thousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n";
    // Its status tells only that the other categories have no text of their own.
    const std::string command = "cd " + folder_.string() +
                                " && localedef -c --quiet --no-archive -i source -f ANSI_X3.4-1968 ./" +
                                name();
    if (std::system(command.c_str()) == -1 || !std::filesystem::exists(folder_ / name() / "LC_NUMERIC"))
      throw std::runtime_error("localedef failed: is the package locales installed?");
  }
  ~comma_locale() { std::filesystem::remove_all(folder_); }
  comma_locale(const comma_locale&) = delete;
  comma_locale& operator=(const comma_locale&) = delete;

  // LOCPATH makes the C library look into this folder.
  const std::filesystem::path& folder() const { return folder_; }
  static const char* name() { return "comma"; }

 private:
  std::filesystem::path folder_;
};
