#include "any_engine.hpp"

#include <array>

namespace hvl_rng {
namespace {

namespace rng = kestro::hvl::rng;

template <class Engine>
using generate_function = sycl::event (*)(Engine&, const void*, std::int64_t, void*);

template <class Engine, class Distribution>
sycl::event generate_as(Engine& engine, const void* distribution, std::int64_t count, void* memory) {
  return rng::generate(*static_cast<const Distribution*>(distribution), engine, count,
                       static_cast<typename Distribution::result_type*>(memory));
}

template <class Engine, class... Distributions>
constexpr auto generators_of(type_list<Distributions...>) {
  return std::array<generate_function<Engine>, sizeof...(Distributions)>{
      &generate_as<Engine, Distributions>...};
}

template <class Engine>
class engine_of_class final : public any_engine {
 public:
  explicit engine_of_class(Engine engine) : engine_(std::move(engine)) {}

  std::unique_ptr<any_engine> copy() const override { return make_any(engine_); }

  sycl::event generate(const any_distribution& distribution, std::int64_t count, void* memory) override {
    static constexpr auto generators = generators_of<Engine>(distribution_list());
    return generators[distribution.index()](engine_, distribution.object(), count, memory);
  }

  void skip_ahead(const std::vector<std::uint64_t>& distance) override {
    if constexpr (requires { engine_.skip_ahead(std::uint64_t{}); }) {
      if (distance.size() == 1)
        return engine_.skip_ahead(distance[0]);
      if constexpr (requires(std::initializer_list<std::uint64_t> words) { engine_.skip_ahead(words); }) {
        if (distance.size() == 2)
          return engine_.skip_ahead({distance[0], distance[1]});
        if (distance.size() == 3)
          return engine_.skip_ahead({distance[0], distance[1], distance[2]});
      }
      throw kestro::hvl::unimplemented("rng", "skip_ahead", "the distance is too long for this engine");
    }
    throw kestro::hvl::unimplemented("rng", "skip_ahead", "this engine cannot skip");
  }

  void leapfrog(std::uint64_t idx, std::uint64_t stride) override {
    if constexpr (requires { engine_.leapfrog(idx, stride); })
      engine_.leapfrog(idx, stride);
    else
      throw kestro::hvl::unimplemented("rng", "leapfrog", "this engine cannot leap");
  }

  std::vector<unsigned char> save() override {
    std::vector<unsigned char> state(static_cast<std::size_t>(rng::get_state_size(engine_)));
    rng::save_state(engine_, state.data());
    return state;
  }

 private:
  Engine engine_;
};

template <class Engine>
std::unique_ptr<any_engine> load(const sycl::queue& queue, const unsigned char* state) {
  return make_any(rng::load_state<Engine>(queue, state));
}

template <class... Engines>
constexpr auto loaders(type_list<Engines...>) {
  return std::array{&load<Engines>...};
}

} // namespace

template <class Engine>
std::unique_ptr<any_engine> make_any(Engine engine) {
  return std::make_unique<engine_of_class<Engine>>(std::move(engine));
}

std::unique_ptr<any_engine> load_any(std::size_t index, const sycl::queue& queue,
                                     const unsigned char* state) {
  return loaders(engine_list()).at(index)(queue, state);
}

#define KESTRO_HVL_ENGINE(name) template std::unique_ptr<any_engine> make_any(kestro::hvl::rng::name);
#include <kestro/hvl/rng/detail/engines.def>
#undef KESTRO_HVL_ENGINE

} // namespace hvl_rng
