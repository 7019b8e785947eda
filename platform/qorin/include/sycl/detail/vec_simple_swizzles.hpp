// Included inside detail::vec_names: the swizzles of two to four elements by name, xx() to wwww() and rr() to
// aaaa(), which a program asks for by defining SYCL_SIMPLE_SWIZZLES before it includes a header. Each level
// appends one of four letters to the word so far and its index to the list of indices.

#define QORIN_WORD(word, ...) QORIN_NAME(word, (has_all<__VA_ARGS__>()), __VA_ARGS__)

#define QORIN_WORDS_4(word, x, y, z, w, ...)                                                                 \
  QORIN_WORD(word##x, __VA_ARGS__, 0)                                                                        \
  QORIN_WORD(word##y, __VA_ARGS__, 1)                                                                        \
  QORIN_WORD(word##z, __VA_ARGS__, 2)                                                                        \
  QORIN_WORD(word##w, __VA_ARGS__, 3)

#define QORIN_WORDS_3(word, x, y, z, w, ...)                                                                 \
  QORIN_WORD(word##x, __VA_ARGS__, 0)                                                                        \
  QORIN_WORD(word##y, __VA_ARGS__, 1)                                                                        \
  QORIN_WORD(word##z, __VA_ARGS__, 2)                                                                        \
  QORIN_WORD(word##w, __VA_ARGS__, 3)                                                                        \
  QORIN_WORDS_4(word##x, x, y, z, w, __VA_ARGS__, 0)                                                         \
  QORIN_WORDS_4(word##y, x, y, z, w, __VA_ARGS__, 1)                                                         \
  QORIN_WORDS_4(word##z, x, y, z, w, __VA_ARGS__, 2)                                                         \
  QORIN_WORDS_4(word##w, x, y, z, w, __VA_ARGS__, 3)

#define QORIN_WORDS_2(letter, index, x, y, z, w)                                                             \
  QORIN_WORD(letter##x, index, 0)                                                                            \
  QORIN_WORD(letter##y, index, 1)                                                                            \
  QORIN_WORD(letter##z, index, 2)                                                                            \
  QORIN_WORD(letter##w, index, 3)                                                                            \
  QORIN_WORDS_3(letter##x, x, y, z, w, index, 0)                                                             \
  QORIN_WORDS_3(letter##y, x, y, z, w, index, 1)                                                             \
  QORIN_WORDS_3(letter##z, x, y, z, w, index, 2)                                                             \
  QORIN_WORDS_3(letter##w, x, y, z, w, index, 3)

QORIN_WORDS_2(x, 0, x, y, z, w)
QORIN_WORDS_2(y, 1, x, y, z, w)
QORIN_WORDS_2(z, 2, x, y, z, w)
QORIN_WORDS_2(w, 3, x, y, z, w)
QORIN_WORDS_2(r, 0, r, g, b, a)
QORIN_WORDS_2(g, 1, r, g, b, a)
QORIN_WORDS_2(b, 2, r, g, b, a)
QORIN_WORDS_2(a, 3, r, g, b, a)

#undef QORIN_WORDS_2
#undef QORIN_WORDS_3
#undef QORIN_WORDS_4
#undef QORIN_WORD
