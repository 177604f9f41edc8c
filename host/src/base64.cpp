// base64_encode / base64_decode over OpenSSL's block coder. OpenSSL's decoder
// is lenient (it accepts misplaced padding and leaves the length to the
// caller), so the text is checked here first: standard alphabet only, length
// a multiple of four after white space is removed, at most two '=' and only at
// the end, and unused bits of the last group zero (one encoding per value).
#include <qbhost/base64.h>

#include <openssl/evp.h>

#include <algorithm>

namespace {

// Whole groups per OpenSSL call, so that lengths stay within int.
constexpr std::size_t kEncodeChunk = 3u * 1024u * 1024u;
constexpr std::size_t kDecodeChunk = 4u * 1024u * 1024u;

int sextet(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

bool is_space(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
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
    std::string clean;
    clean.reserve(size);
    for (std::size_t i = 0; i < size; ++i)
      if (!is_space(text[i])) clean.push_back(text[i]);
    if (clean.size() % 4 != 0) return false;
    if (clean.empty()) return true;

    std::size_t pad = 0;
    if (clean.back() == '=') pad = (clean[clean.size() - 2] == '=') ? 2 : 1;
    for (std::size_t i = 0; i < clean.size() - pad; ++i)
      if (sextet(clean[i]) < 0) return false;
    // The last data character may only carry bits that end up in a byte.
    int const last = sextet(clean[clean.size() - pad - 1]);
    if ((pad == 1 && (last & 0x03) != 0) || (pad == 2 && (last & 0x0F) != 0)) return false;

    out.resize(clean.size() / 4 * 3);
    std::size_t written = 0;
    for (std::size_t done = 0; done < clean.size();) {
      std::size_t const n = std::min(kDecodeChunk, clean.size() - done);
      int const w = EVP_DecodeBlock(out.data() + written,
                                    reinterpret_cast<unsigned char const*>(clean.data() + done),
                                    static_cast<int>(n));
      if (w < 0) {
        out.clear();
        return false;
      }
      written += static_cast<std::size_t>(w);
      done += n;
    }
    // EVP_DecodeBlock counts the padding as zero bytes.
    out.resize(written - pad);
    return true;
  } catch (...) {
    out.clear();
    return false;
  }
}

bool base64_decode(std::string const& text, std::vector<unsigned char>& out) {
  return base64_decode(text.data(), text.size(), out);
}
