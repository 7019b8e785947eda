#include "generators/counter.hpp"

namespace hvl::streams {

const engine ars5_engine = entry<counter_generator<engines::ars5>>();

} // namespace hvl::streams
