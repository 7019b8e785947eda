#include "generators/counter.hpp"

namespace hvl::streams {

const engine philox4x32x10_engine = entry<counter_generator<engines::philox4x32x10>>();

} // namespace hvl::streams
