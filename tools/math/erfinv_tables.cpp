// Writes hvl/math/detail/erfinv_tables.hpp to the standard output: for every piece of y = 1 - |v| the polynomial in t
// that gives erfinv(v), or erfinv(v) / |v| where y > 1/4. Interpolation at Chebyshev nodes in 60 digits.
#include <boost/math/constants/constants.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/multiprecision/cpp_bin_float.hpp>

#include <cstdio>
#include <vector>

namespace {

using number = boost::multiprecision::number<boost::multiprecision::cpp_bin_float<60>>;

// Piece i covers y in (y(i, t = 1/2), y(i, t = -1/2)]: a fraction 1 / pieces_per_binade of a binade.
number y_of(int piece, int pieces_per_binade, const number& t) {
  const int binade = piece / pieces_per_binade;
  const number top = 2 - number(piece % pieces_per_binade) / pieces_per_binade;
  return ldexp(top - (t + 0.5) / pieces_per_binade, -1 - binade);
}

number target(int piece, int pieces_per_binade, const number& t) {
  const number y = y_of(piece, pieces_per_binade, t);
  const number e = boost::math::erfc_inv(y);
  return piece < 2 * pieces_per_binade ? number(e / (1 - y)) : e;
}

// Coefficients in powers of t of the polynomial through the Chebyshev nodes of [-1/2, 1/2].
std::vector<number> fit(int piece, int pieces_per_binade, int terms) {
  std::vector<number> node, difference;
  for (int k = 0; k < terms; ++k) {
    node.push_back(cos(boost::math::constants::pi<number>() * (2 * k + 1) / (2 * terms)) / 2);
    difference.push_back(target(piece, pieces_per_binade, node.back()));
  }
  for (int order = 1; order < terms; ++order)
    for (int k = terms - 1; k >= order; --k)
      difference[k] = (difference[k] - difference[k - 1]) / (node[k] - node[k - order]);
  std::vector<number> c(static_cast<std::size_t>(terms));
  for (int k = terms - 1; k >= 0; --k) { // c = c * (t - node[k]) + difference[k]
    for (int j = terms - 1; j > 0; --j)
      c[j] = c[j - 1] - node[k] * c[j];
    c[0] = difference[k] - node[k] * c[0];
  }
  return c;
}

template <class T>
void write(const char* type, const char* suffix, int pieces, int columns, int pieces_per_binade, int terms,
           bool low_part) {
  std::vector<std::vector<T>> rows(static_cast<std::size_t>(terms) + (low_part ? 1 : 0));
  for (int i = 0; i < pieces; ++i) {
    const std::vector<number> c = fit(i, pieces_per_binade, terms);
    std::size_t row = 0;
    const T first = static_cast<T>(c[0]);
    rows[row++].push_back(first);
    if (low_part)
      rows[row++].push_back(static_cast<T>(number(c[0] - first)));
    for (int k = 1; k < terms; ++k)
      rows[row++].push_back(static_cast<T>(c[k]));
  }
  std::printf("template <>\nstruct erfinv_table<%s> {\n  static constexpr int pieces_per_binade = %d;\n",
              type, pieces_per_binade);
  std::printf("  static constexpr %s c[%zu][%d] = {\n", type, rows.size(), columns);
  for (const auto& row : rows) {
    std::printf("    {");
    for (std::size_t i = 0; i < row.size(); ++i)
      std::printf("%a%s%s", static_cast<double>(row[i]), suffix,
                  i + 1 == row.size() ? "},\n"
                  : i % 6 == 5        ? ",\n     "
                                      : ", ");
  }
  std::printf("  };\n};\n");
}

} // namespace

int main() {
  std::printf("// Written by tools/math/erfinv_tables.cpp.\n// clang-format off\n#pragma once\n\n"
              "namespace hvl::math::detail {\n\n"
              "// c[j][i]: coefficient j of piece i. In float c[0] + c[1] is the constant term, in double "
              "c[0] is. Rows of\n"
              "// 32 floats, the last ones unused, fill whole registers.\n"
              "template <class T>\nstruct erfinv_table;\n\n");
  write<float>("float", "f", 25, 32, 1, 9, true);
  std::printf("\n");
  write<double>("double", "", 213, 213, 4, 12, false);
  std::printf("\n} // namespace hvl::math::detail\n");
}
