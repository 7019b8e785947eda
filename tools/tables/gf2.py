"""Polynomials over GF(2), as whole numbers: bit i is coefficient i."""


def connection_polynomial(bits, most):
    """Berlekamp and Massey's algorithm, for lengths up to `most`. Returns c and L: bit j of c is the coefficient c_j of
    s_k = c_1 s_(k-1) + ... + c_L s_(k-L); c_0 is 1."""
    mask = (1 << (most + 1)) - 1
    c, b, length, since, window = 1, 1, 0, 1, 0
    for k, bit in enumerate(bits):
        window = (window << 1 | bit) & mask
        if (c & window).bit_count() & 1:
            if 2 * length <= k:
                c, b, length, since = c ^ (b << since), c, k + 1 - length, 1
                continue
            c ^= b << since
        since += 1
    return c, length


def characteristic_polynomial(bits, most):
    """Of the shortest recurrence that makes `bits`."""
    c, length = connection_polynomial(bits, most)
    return sum(1 << (length - j) for j in range(length + 1) if c >> j & 1)
