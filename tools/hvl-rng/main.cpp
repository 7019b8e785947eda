#include "command_numbers.hpp"
#include "failure.hpp"
#include "on_signal.hpp"
#include "verbs.hpp"

#include <kestro/hvl/exceptions.hpp>

#include <CLI/CLI.hpp>
#include <fmt/ranges.h>

#include <csignal>
#include <iostream>
#include <set>
#include <sstream>

namespace {

using namespace hvl_rng;

constexpr const char* footer =
    "Exit status: 0 done (also when the reader of a pipe closed it), 1 failed, 2 wrong usage, 3 device,\n"
    "4 output could not be written, 5 the engine does not offer the distribution.";

void add_parameters(CLI::App& verb, parameter_values& values) {
  std::set<std::string> names;
  for (const distribution_entry& one : distributions())
    for (const parameter_entry& parameter : one.parameters)
      names.insert(parameter.name);
  for (const std::string& name : names)
    verb.add_option_function<std::string>(
            "--" + name, [&values, name](const std::string& text) { values[name] = text; },
            "parameter of the distributions that have it")
        ->type_name("VALUE")
        ->group("Parameters (hvl-rng list tells whose, and the defaults)");
}

output_format format_of(const std::string& name) {
  return name == "raw" ? output_format::raw : name == "npy" ? output_format::npy : output_format::text;
}

// What the command line says in a form of its own.
struct raw_options {
  std::string count, seed = "1", skip = "0";
  std::string format = "text", seconds;
};

void read_source(const raw_options& given, source_options& options) {
  options.start.seed = read_seed(given.seed);
  options.start.skip = read_count("--skip", given.skip);
}

CLI::Option* add_text(CLI::App& verb, const char* names, std::string& value, const char* kind,
                      const char* help) {
  return verb.add_option(names, value, help)->type_name(kind)->capture_default_str();
}

void add_source(CLI::App& verb, source_options& options, raw_options& given) {
  add_text(verb, "-e,--engine", options.engine, "NAME", "the engine");
  add_text(verb, "-s,--seed", given.seed, "SEED",
           "one seed, or a list of 32-bit words separated by commas; a quasi-random engine (sobol, "
           "niederreiter) has no "
           "seed: then it is the number of dimensions, whose coordinates the numbers take in turn; to "
           "nondeterministic it "
           "does not count");
  add_text(verb, "--skip", given.skip, "N", "outputs of the engine to skip first");
  verb.add_option_function<std::string>(
          "--member",
          [&start = options.start](const std::string& text) { start.member = read_count("--member", text); },
          "which member of an engine that has several, such as mt2203")
      ->type_name("N");
  add_text(verb, "--mode", options.start.mode, "MODE",
           "how mrg32k3a orders its sequence: standard, optimal, or custom:N for N substreams");
  add_text(verb, "-d,--distribution", options.distribution, "NAME", "the distribution");
  add_text(verb, "-t,--type", options.type, "NAME",
           "float, double, int32, uint32 or uint64, as the distribution offers");
  add_text(verb, "-m,--method", options.method, "NAME",
           "the distribution's method; the library's default, but accurate for integers");
  add_text(verb, "--device", options.device, "DEVICE", "cpu, gpu, or a number of hvl-rng devices");
  add_parameters(verb, options.parameters);
}

// An empty name is a slip, such as a shell variable that nobody has set.
void add_output(CLI::App& verb, source_options& options, const char* help) {
  add_text(verb, "-o,--output", options.output, "FILE", help)->check([](const std::string& name) {
    return name.empty() ? "a name is needed" : "";
  });
}

constexpr const char* count_help = "how many numbers; 1e6, 500k, 20M, 3G are understood";

void add_generate(CLI::App& app, generate_options& options, raw_options& given) {
  CLI::App* verb = app.add_subcommand("generate", "Write random numbers to a file or a pipe");
  auto* count_option = add_text(*verb, "-n,--count", given.count, "N", count_help);
  auto* forever = verb->add_flag("--forever", options.forever, "go on until the reader closes");
  count_option->excludes(forever);
  add_source(*verb, options, given);
  add_text(*verb, "-f,--format", given.format, "", "raw, text (one a line) or npy")
      ->check(CLI::IsMember({"raw", "text", "npy"}));
  add_output(*verb, options, "a file; standard output otherwise");
  verb->callback([&options, &given, count_option] {
    if (count_option->empty() && !options.forever)
      throw failure(exit_status::usage, "--count or --forever is needed");
    if (!options.forever)
      options.count = read_count("--count", given.count);
    read_source(given, options);
    options.format = format_of(given.format);
    generate_numbers(options);
  });
}

void add_plot(CLI::App& app, plot_options& options, raw_options& given) {
  CLI::App* verb =
      app.add_subcommand("plot", "Draw a histogram of random numbers and the exact density (needs gnuplot)");
  given.count = "1M";
  CLI::Option* count_option = add_text(*verb, "-n,--count", given.count, "N", count_help);
  verb->add_flag("--scatter", options.as_points,
                 "draw each pair of numbers as a point instead (1000 numbers)");
  add_source(*verb, options, given);
  add_output(*verb, options, "a file, .svg or .png; text to standard output otherwise");
  verb->callback([&options, &given, count_option] {
    if (options.as_points && count_option->empty())
      given.count = "1000";
    options.count = read_count("--count", given.count);
    read_source(given, options);
    plot_numbers(options);
  });
}

void add_bench(CLI::App& app, bench_options& options, raw_options& given) {
  CLI::App* verb = app.add_subcommand("bench", "Measure numbers a second, beside what memory takes");
  given.seconds = "5";
  options.device = "all";
  CLI::Option* count_option =
      add_text(*verb, "-n,--count", given.count, "N", "how many numbers a call; several sizes otherwise");
  add_text(*verb, "--seconds", given.seconds, "N", "how long to measure, all devices and sizes together");
  add_source(*verb, options, given);
  verb->get_option("--device")->description("cpu, gpu, a number of hvl-rng devices, or all");
  add_output(*verb, options, "a picture, .svg or .png (needs gnuplot); text to standard output otherwise");
  verb->callback([&options, &given, count_option] {
    options.count = count_option->empty() ? 0 : read_count("--count", given.count);
    if (options.count == 0 && !count_option->empty())
      throw failure(exit_status::usage, "--count 0: a call of no numbers has no speed");
    options.seconds = read_count("--seconds", given.seconds);
    read_source(given, options);
    measure_speed(options);
  });
}

// CLI11 would only say that a verb is missing.
void require_known_verb(const CLI::App& app) {
  const std::vector<std::string> unknown = app.remaining();
  if (!app.get_subcommands().empty() || unknown.empty())
    return;
  std::vector<std::string> verbs;
  for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; }))
    verbs.push_back(verb->get_name());
  throw failure(exit_status::usage,
                fmt::format("{}: not one of {}", unknown.front(), fmt::join(verbs, ", ")));
}

int run(int count, char** words) {
  CLI::App app{"Random numbers on any device reached through SYCL", "hvl-rng"};
  app.require_subcommand(1);
  app.set_version_flag("--version", HVL_RNG_VERSION);
  app.footer(footer);

  generate_options generated;
  plot_options plotted;
  bench_options benched;
  raw_options given_to_generate, given_to_plot, given_to_bench;
  std::string trace;
  add_generate(app, generated, given_to_generate);
  add_plot(app, plotted, given_to_plot);
  add_bench(app, benched, given_to_bench);
  app.add_subcommand("devices", "List the devices")->callback(list_devices);
  app.add_subcommand("list", "List the engines and distributions")->callback(list_catalogue);
  CLI::App* summary =
      app.add_subcommand("trace-summary", "Sum the calls of a trace by engine and distribution");
  summary->add_option("FILE", trace, "trace lines, as HVL_VERBOSE_OUTPUT_FILE collects them; - reads a pipe")
      ->type_name("")
      ->required();
  summary->callback([&trace] { summarise_trace(trace); });

  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& stopped) {
    require_known_verb(app);
    std::ostringstream asked_for;
    if (app.exit(stopped, asked_for, std::cerr) != 0)
      return static_cast<int>(exit_status::usage);
    write_output("", asked_for.str());
  }
  return 0;
}

int report(exit_status status, const char* message) {
  fmt::print(stderr, "hvl-rng: {}\n", message);
  return static_cast<int>(status);
}

} // namespace

int main(int count, char** words) {
  // A closed pipe and a file that is too large are then errors of write(2), which end the work in order.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  tidy_up_on_signals();
  try {
    return run(count, words);
  } catch (const failure& stopped) {
    return report(stopped.status(), stopped.what());
  } catch (const kestro::hvl::unimplemented& missing) {
    return report(exit_status::unsupported, missing.what());
  } catch (const kestro::hvl::invalid_argument& refused) {
    // Options that the library refuses are told of where they are read; what is left is a mode without the distribution.
    return report(exit_status::unsupported, refused.what());
  } catch (const kestro::hvl::unsupported_device& refused) {
    return report(exit_status::device, refused.what());
  } catch (const kestro::hvl::device_bad_alloc& refused) {
    return report(exit_status::device, refused.what());
  } catch (const sycl::exception& failed) {
    return report(exit_status::device, failed.what());
  } catch (const std::exception& failed) {
    return report(exit_status::failed, failed.what());
  }
}
