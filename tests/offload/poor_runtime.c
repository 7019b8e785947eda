/* An OpenMP runtime that knows no interop query. */
__attribute__((visibility("default"))) int hvl_tgt_get_interop_property(void* interop, int number,
                                                                        void** value) {
  (void)interop, (void)number, (void)value;
  return -1;
}
