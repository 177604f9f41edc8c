// Base64 (RFC 4648, standard alphabet, padded).
#pragma once
#include <cstddef>
#include <string>
#include <vector>
#include <qbhost/export.h>

QBHOST_API std::string base64_encode(unsigned char const* data, std::size_t size);
// Decodes `size` characters; ASCII white space is skipped. Returns false (and
// leaves `out` empty) on any other character, bad padding or a bad length.
QBHOST_API bool base64_decode(char const* text, std::size_t size,
                              std::vector<unsigned char>& out);
