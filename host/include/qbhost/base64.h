// Base64 (RFC 4648, standard alphabet, padded).
#pragma once
#include <cstddef>
#include <string>
#include <vector>
#include <qbhost/export.h>

QBHOST_API std::string base64_encode(unsigned char const* data, std::size_t size);
// Decodes `size` characters; ASCII white space is skipped. Returns false (and
// leaves `out` empty) on any other character, bad padding or a bad length,
// and when the unused bits of the last group are not zero (only the one
// canonical text decodes to given bytes).
QBHOST_API bool base64_decode(char const* text, std::size_t size,
                              std::vector<unsigned char>& out);
QBHOST_API bool base64_decode(std::string const& text, std::vector<unsigned char>& out);
