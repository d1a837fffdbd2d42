#include "digest.h"

#include <openssl/evp.h>

#include <array>
#include <new>

namespace talm_flow::program {

std::string HashSource(std::string_view text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  if (EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1) throw std::bad_alloc();
  std::array<unsigned char, 4 * ((EVP_MAX_MD_SIZE + 2) / 3) + 1> base64{};
  const int length = EVP_EncodeBlock(base64.data(), digest.data(), static_cast<int>(size));
  std::string source = "'sha256-";
  source.append(base64.begin(), base64.begin() + length);
  source += '\'';
  return source;
}

}  // namespace talm_flow::program
