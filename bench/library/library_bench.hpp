#pragma once

namespace bench {

void register_generate();
void register_latency();

} // namespace bench
