// One registration function for each file of benchmarks.
#pragma once

namespace bench {

void register_checksum();
void register_matrix();
void register_frame();
void register_bicubic();
void register_nearest();
void register_statistics();
void register_table_resize();

} // namespace bench
