// What docs/ says of engines and distributions and a program can find out, as Markdown: tools/pages/facts.py puts it into the
// pages. Features are asked of the types, words are counted by looking where an engine stands, refusals are tried.
//
//   page_facts           what is the same on every machine
//   page_facts --costs   how long values take on this one, in units of a uniform float; run it on one core
//
// A line "@NAME" begins what belongs between the marks of that name.
#include "listed.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdint>
#include <stdexcept>
#include <utility>

namespace page_facts {
namespace {

// ---- Engines

const char* words_text(::hvl::streams::word_scale scale) {
  using enum ::hvl::streams::word_scale;
  switch (scale) {
  case signed32:
    return "32 bits";
  case unsigned32:
    return "32 bits, a coordinate";
  case mcg31m1:
    return "1 to 2^31 - 2";
  case mrg32k3a:
    return "1 to 2^32 - 209";
  case mcg59:
    return "1 to 2^59 - 1";
  }
  return "";
}

template <class Engine>
const char* skip_text() {
  if constexpr (requires(Engine e) { e.skip_ahead({std::uint64_t{1}, std::uint64_t{2}}); })
    return "up to the period";
  else if constexpr (requires(Engine e) { e.skip_ahead(std::uint64_t{1}); })
    return "up to 2^64 - 1";
  else
    return "-";
}

template <class Engine>
const char* gpu_text() {
  using definition = typename definition_of<Engine>::type;
  if constexpr (requires { typename definition::recurrence; })
    return "in a kernel; state in device memory";
  else if constexpr (requires { typename definition::cursor; })
    return "in a kernel, from a position";
  else
    return "on the host and copied";
}

// The families that the engine refuses, by trying every instance.
template <class Engine, class... Distributions>
std::vector<std::string> refused_by(const sycl::queue& queue, type_list<Distributions...>) {
  std::vector<std::string> refused;
  Engine engine = made<Engine>(queue);
  const auto try_one = [&]<class Distribution>(const Distribution& distribution) {
    using value = typename Distribution::result_type;
    value values[8];
    const std::string name = family_of(spelling_of<Distribution>());
    try {
      sycl::buffer<value, 1> output(values, sycl::range<1>(std::size(values)));
      rng::generate(distribution, engine, 1, output);
    } catch (const kestro::hvl::unimplemented&) {
      if (refused.empty() || refused.back() != name)
        refused.push_back(name);
    }
  };
  (try_one(Distributions()), ...);
  return refused;
}

// Uniform numbers that a device gives, the engine's fractions of words included.
template <class Engine>
std::vector<double> numbers_on(const sycl::queue& queue) {
  std::vector<double> values(1000);
  Engine engine = made<Engine>(queue);
  sycl::buffer<double, 1> output(values.data(), sycl::range<1>(values.size()));
  rng::generate(rng::uniform<double>(), engine, 1000, output);
  return values;
}

using fact_rows = std::vector<std::pair<std::string, std::string>>;

template <class Engine>
fact_rows facts_of(const sycl::queue& cpu, const sycl::queue& gpu) {
  constexpr const engines::facts& about = definition_of<Engine>::type::about;
  constexpr bool has_leapfrog = requires(Engine e) {
    e.leapfrog(std::uint64_t{0}, std::uint64_t{2});
  };
  const auto refused = refused_by<Engine>(cpu, distribution_list());
  Engine engine = made<Engine>(cpu);
  return {
      {"words", words_text(about.scale)},
      {"members", about.members == 1 ? "-" : std::to_string(about.members)},
      {"`skip_ahead`", skip_text<Engine>()},
      {"`leapfrog`", has_leapfrog ? "yes" : "-"},
      {"refuses", refused.empty() ? "-" : fmt::format("`{}`", fmt::join(refused, "`, `"))},
      {"saved state, bytes", std::to_string(rng::get_state_size(engine))},
      {"numbers on a GPU device are made", gpu_text<Engine>()},
      {"they are those of a CPU device", numbers_on<Engine>(cpu) == numbers_on<Engine>(gpu) ? "yes" : "no"}};
}

void print_table(const std::vector<std::string>& names, const std::vector<fact_rows>& rows) {
  fmt::print("@engines\n| engine |");
  for (const auto& [title, text] : rows.front())
    fmt::print(" {} |", title);
  fmt::print("\n|---|");
  for (std::size_t i = 0; i < rows.front().size(); ++i)
    fmt::print("---|");
  for (std::size_t i = 0; i < names.size(); ++i) {
    fmt::print("\n| [{0}]({0}.md) |", names[i]);
    for (const auto& [title, text] : rows[i])
      fmt::print(" {} |", text);
  }
  fmt::print("\n");
  for (std::size_t i = 0; i < names.size(); ++i) {
    fmt::print("@engine {}\n| | |\n|---|---|\n", names[i]);
    for (const auto& [title, text] : rows[i])
      fmt::print("| {} | {} |\n", title, text);
  }
}

template <class... Engines>
void print_engines(const sycl::queue& cpu, const sycl::queue& gpu, type_list<Engines...>) {
  print_table({definition_of<Engines>::type::about.name...}, {facts_of<Engines>(cpu, gpu)...});
}

// ---- Distributions

// mcg59 offers all distributions, and its state tells its position.
std::vector<unsigned char> state_of(rng::mcg59& engine) {
  std::vector<unsigned char> state(static_cast<std::size_t>(rng::get_state_size(engine)));
  rng::save_state(engine, state.data());
  return state;
}

template <class Distribution>
int words_for(const sycl::queue& queue, const Distribution& distribution, int n) {
  using value = typename Distribution::result_type;
  value values[64];
  auto engine = made<rng::mcg59>(queue);
  {
    sycl::buffer<value, 1> output(values, sycl::range<1>(std::size(values)));
    rng::generate(distribution, engine, n, output);
  }
  const auto wanted = state_of(engine);
  auto skipped = made<rng::mcg59>(queue);
  for (int words = 0; words <= 64; ++words, skipped.skip_ahead(1))
    if (state_of(skipped) == wanted)
      return words;
  throw std::runtime_error("more words than were thought possible");
}

template <class Distribution>
std::string parameters_of(const Distribution& distribution) {
  std::vector<std::string> texts;
  [[maybe_unused]] const auto add = [&](const auto& one) {
    const auto value = (distribution.*one.accessor)();
    using text = hvl_rng::parameter_text<std::remove_const_t<decltype(value)>>;
    texts.push_back(fmt::format("{} = {}", one.name, text::of(value)));
  };
  std::apply([&](const auto&... parameter) { (add(parameter), ...); },
             hvl_rng::distribution_traits<Distribution>::parameters);
  return texts.empty() ? "-" : fmt::format("{}", fmt::join(texts, ", "));
}

// The rows of one distribution's page.
struct distribution_rows {
  std::string name, parameters, rows;
  std::vector<std::string> words_a_value;
};

class distribution_pages {
 public:
  explicit distribution_pages(const sycl::queue& queue) : queue_(queue) {}

  template <class... Distributions>
  void add_defaults(type_list<Distributions...>) {
    (add(Distributions()), ...);
  }

  template <class Distribution>
  void add(const Distribution& distribution) {
    const std::string_view spelling = spelling_of<Distribution>();
    const std::string name = family_of(spelling);
    auto found =
        std::find_if(pages_.begin(), pages_.end(), [&](const auto& one) { return one.name == name; });
    if (found == pages_.end())
      found = pages_.insert(pages_.end(), {name, parameters_of(distribution), "", {}});

    const int words = words_for(queue_, distribution, 1);
    int n = 1;
    while (words_for(queue_, distribution, n + 1) == words)
      ++n;
    const int values = n * values_in_one(distribution);
    found->rows += fmt::format("| `{}` | {} | {} | {} |\n",
                               spelling.substr(name.size() + 1, spelling.size() - name.size() - 2),
                               parameters_of(distribution), words, values);
    const std::string each = fmt::format("{:g}", static_cast<double>(words) / values);
    auto& all = found->words_a_value;
    if (std::find(all.begin(), all.end(), each) == all.end())
      all.push_back(each);
  }

  void print() const {
    fmt::print(
        "@distributions\n| distribution | parameters and their defaults | words a value |\n|---|---|---|\n");
    for (const auto& one : pages_)
      fmt::print("| [{0}]({0}.md) | {1} | {2} |\n", one.name, one.parameters,
                 fmt::join(one.words_a_value, ", "));
    for (const auto& one : pages_)
      fmt::print(
          "@distribution {}\n| type and method | parameters | words | for values |\n|---|---|---|---|\n{}",
          one.name, one.rows);
  }

 private:
  sycl::queue queue_;
  std::vector<distribution_rows> pages_;
};

void print_distributions(const sycl::queue& queue) {
  distribution_pages pages(queue);
  pages.add_defaults(distribution_list());
  // where parameters decide how many words there are
  pages.add(rng::gamma<float>(0.5f, 0.0f, 1.0f));
  pages.add(rng::gamma<double>(0.5, 0.0, 1.0));
  pages.add(rng::chi_square<float>(1));
  pages.add(rng::chi_square<double>(1));
  pages.add(rng::poisson<std::int32_t>(1e7));
  pages.add(rng::binomial<std::int32_t>(2000000000, 0.5));
  pages.add(rng::hypergeometric<std::int32_t>(2000000000, 1000000000, 1000000000));
  pages.add(rng::negative_binomial<std::int32_t>(1.0, 0.001));
  pages.print();
}

} // namespace
} // namespace page_facts

int main(int argc, char** argv) {
  using namespace page_facts;
  if (argc == 2 && std::string_view(argv[1]) == "--costs") {
    print_costs();
  } else {
    const sycl::queue cpu(sycl::cpu_selector_v);
    print_engines(cpu, sycl::queue(sycl::gpu_selector_v), engine_list());
    print_distributions(cpu);
  }
}
