// base64_encode / base64_decode over OpenSSL's block coder. OpenSSL's decoder
// is lenient (it accepts misplaced padding and leaves the length to the
// caller), so the text is checked here first, one table lookup a byte:
// standard alphabet only, length a multiple of four after white space is
// removed, at most two '=' and only at the end, and unused bits of the last
// group zero (one encoding per value).
#include <qbhost/base64.h>

#include <openssl/evp.h>

#include <algorithm>
#include <string>

namespace {

// Whole groups per OpenSSL call, so that lengths stay within int.
constexpr std::size_t kEncodeChunk = 3u * 1024u * 1024u;
constexpr std::size_t kDecodeChunk = 4u * 1024u * 1024u;

// What each byte is in base64 text: its value (0-63), or one of these.
constexpr unsigned char kSpace = 64, kPad = 65, kBad = 255;

struct SextetTable {
  unsigned char of[256];
  constexpr SextetTable() : of() {
    for (int c = 0; c < 256; ++c) of[c] = kBad;
    for (int c = 'A'; c <= 'Z'; ++c) of[c] = static_cast<unsigned char>(c - 'A');
    for (int c = 'a'; c <= 'z'; ++c) of[c] = static_cast<unsigned char>(c - 'a' + 26);
    for (int c = '0'; c <= '9'; ++c) of[c] = static_cast<unsigned char>(c - '0' + 52);
    of[static_cast<unsigned char>('+')] = 62;
    of[static_cast<unsigned char>('/')] = 63;
    of[static_cast<unsigned char>('=')] = kPad;
    for (char c : {' ', '\t', '\n', '\r', '\f', '\v'}) of[static_cast<unsigned char>(c)] = kSpace;
  }
};
constexpr SextetTable kTable;

unsigned char sextet(char c) { return kTable.of[static_cast<unsigned char>(c)]; }

// Checks text without white space: alphabet only, length a multiple of four,
// at most two '=' and only at the end, unused bits of the last group zero.
// Returns the number of padding characters, or -1.
int check_clean(char const* text, std::size_t size) {
  if (size % 4 != 0) return -1;
  if (size == 0) return 0;
  int pad = 0;
  if (text[size - 1] == '=') pad = text[size - 2] == '=' ? 2 : 1;
  unsigned char seen = 0;
  for (std::size_t i = 0; i < size - static_cast<std::size_t>(pad); ++i) seen |= sextet(text[i]);
  if (seen >= 64) return -1;  // a pad, white space or a foreign byte inside
  // The last data character may only carry bits that end up in a byte.
  unsigned char const last = sextet(text[size - static_cast<std::size_t>(pad) - 1]);
  if ((pad == 1 && (last & 0x03) != 0) || (pad == 2 && (last & 0x0F) != 0)) return -1;
  return pad;
}

bool decode_clean(char const* text, std::size_t size, std::vector<unsigned char>& out) {
  int const pad = check_clean(text, size);
  if (pad < 0) return false;
  if (size == 0) return true;
  out.resize(size / 4 * 3);
  std::size_t written = 0;
  for (std::size_t done = 0; done < size;) {
    std::size_t const n = std::min(kDecodeChunk, size - done);
    int const w = EVP_DecodeBlock(out.data() + written,
                                  reinterpret_cast<unsigned char const*>(text + done),
                                  static_cast<int>(n));
    if (w < 0) {
      out.clear();
      return false;
    }
    written += static_cast<std::size_t>(w);
    done += n;
  }
  // EVP_DecodeBlock counts the padding as zero bytes.
  out.resize(written - static_cast<std::size_t>(pad));
  return true;
}

}  // namespace

std::string base64_encode(unsigned char const* data, std::size_t size) {
  std::string out;
  if (data == nullptr || size == 0) return out;
  try {
    out.resize((size + 2) / 3 * 4 + 1);
    std::size_t written = 0;
    for (std::size_t done = 0; done < size;) {
      std::size_t const n = std::min(kEncodeChunk, size - done);
      int const w = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&out[written]), data + done,
                                    static_cast<int>(n));
      written += static_cast<std::size_t>(w);
      done += n;
    }
    out.resize(written);
  } catch (...) {
    out.clear();
  }
  return out;
}

bool base64_decode(char const* text, std::size_t size, std::vector<unsigned char>& out) {
  out.clear();
  if (text == nullptr) return size == 0;
  try {
    // Text without white space (the usual case) is checked and decoded in
    // place; only text with white space is copied without it first.
    std::size_t i = 0;
    while (i < size && sextet(text[i]) != kSpace) ++i;
    if (i == size) return decode_clean(text, size, out);
    std::string clean(text, i);
    clean.reserve(size);
    for (; i < size; ++i)
      if (sextet(text[i]) != kSpace) clean.push_back(text[i]);
    return decode_clean(clean.data(), clean.size(), out);
  } catch (...) {
    out.clear();
    return false;
  }
}

bool base64_decode(std::string const& text, std::vector<unsigned char>& out) {
  return base64_decode(text.data(), text.size(), out);
}
