#include "failure.hpp"
#include "verbs.hpp"

#include <kestro/hvl/exceptions.hpp>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <charconv>
#include <csignal>
#include <functional>
#include <set>

namespace {

using namespace hvl_rng;

constexpr const char* footer =
    "Exit status: 0 done (also when the reader of a pipe closed it), 1 failed, 2 wrong usage, 3 device,\n"
    "4 output could not be written, 5 the engine does not offer the distribution.";

// A plain integer, or one with the suffix k, M, G or T: thousands, millions, ...
std::uint64_t read_count(const std::string& text) {
  constexpr std::string_view suffixes = "kMGT";
  std::uint64_t count = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, count);
  std::uint64_t scale = 1;
  if (end + 1 == last && suffixes.find(*end) != suffixes.npos)
    for (std::size_t power = 0; power <= suffixes.find(*end); ++power)
      scale *= 1000;
  std::uint64_t product = 0;
  if (error != std::errc() || (end != last && scale == 1) || __builtin_mul_overflow(count, scale, &product))
    throw failure(exit_status::usage,
                  fmt::format("--count {}: not a number such as 1000, 500k, 20M or 3G", text));
  return product;
}

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
  std::string count;
  std::string format = "text";
};

void add_source(CLI::App& verb, source_options& options) {
  verb.add_option("-e,--engine", options.engine, "the engine")->capture_default_str();
  verb.add_option("-s,--seed", options.seed, "one seed, or several words separated by commas")
      ->delimiter(',')
      ->capture_default_str();
  verb.add_option("--skip", options.skip, "outputs of the engine to skip first")->capture_default_str();
  verb.add_option("-d,--distribution", options.distribution, "the distribution")->capture_default_str();
  verb.add_option("-t,--type", options.type,
                  "float, double, int32, uint32 or uint64, as the distribution offers");
  verb.add_option("-m,--method", options.method, "the distribution's method");
  verb.add_option("--device", options.device, "cpu, gpu, or a number of hvl-rng devices")
      ->capture_default_str();
  add_parameters(verb, options.parameters);
}

constexpr const char* count_help = "how many numbers; 500k, 20M, 3G are understood";

void add_generate(CLI::App& app, generate_options& options, raw_options& given) {
  CLI::App* verb = app.add_subcommand("generate", "Write random numbers to a file or a pipe");
  auto* count_option = verb->add_option("-n,--count", given.count, count_help);
  auto* forever = verb->add_flag("--forever", options.forever, "go on until the reader closes");
  count_option->excludes(forever);
  add_source(*verb, options);
  verb->add_option("-f,--format", given.format, "raw, text (one a line) or npy")
      ->check(CLI::IsMember({"raw", "text", "npy"}))
      ->type_name("")
      ->capture_default_str();
  verb->add_option("-o,--output", options.output, "a file; standard output otherwise");
  verb->callback([&options, &given] {
    if (given.count.empty() && !options.forever)
      throw failure(exit_status::usage, "--count or --forever is needed");
    if (!options.forever)
      options.count = read_count(given.count);
    options.format = format_of(given.format);
    generate_numbers(options);
  });
}

void add_plot(CLI::App& app, source_options& options, raw_options& given) {
  CLI::App* verb =
      app.add_subcommand("plot", "Draw a histogram of random numbers and the exact density (needs gnuplot)");
  given.count = "1M";
  verb->add_option("-n,--count", given.count, count_help)->capture_default_str();
  add_source(*verb, options);
  verb->add_option("-o,--output", options.output, "a file, .svg or .png; text to standard output otherwise");
  verb->callback([&options, &given] {
    options.count = read_count(given.count);
    plot_numbers(options);
  });
}

int run(int count, char** words) {
  CLI::App app{"Random numbers on any device reached through SYCL", "hvl-rng"};
  app.require_subcommand(1);
  app.set_version_flag("--version", HVL_RNG_VERSION);
  app.footer(footer);

  generate_options generated;
  source_options plotted;
  raw_options given_to_generate, given_to_plot;
  std::string trace;
  add_generate(app, generated, given_to_generate);
  add_plot(app, plotted, given_to_plot);
  app.add_subcommand("devices", "List the devices")->callback(list_devices);
  app.add_subcommand("list", "List the engines and distributions")->callback(list_catalogue);
  CLI::App* summary =
      app.add_subcommand("trace-summary", "Sum the calls of a trace by engine and distribution");
  summary->add_option("FILE", trace, "trace lines, as HVL_VERBOSE_OUTPUT_FILE collects them; - reads a pipe")
      ->required();
  summary->callback([&trace] { summarise_trace(trace); });

  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& stopped) {
    return app.exit(stopped) == 0 ? 0 : static_cast<int>(exit_status::usage);
  }
  return 0;
}

int report(exit_status status, const char* message) {
  fmt::print(stderr, "hvl-rng: {}\n", message);
  return static_cast<int>(status);
}

} // namespace

int main(int count, char** words) {
  // A closed pipe is then an error of write(2), which ends the work in order.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return run(count, words);
  } catch (const failure& stopped) {
    return report(stopped.status(), stopped.what());
  } catch (const kestro::hvl::unimplemented& missing) {
    return report(exit_status::unsupported, missing.what());
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
