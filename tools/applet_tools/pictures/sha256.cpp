#include "applet_tools/pictures/formats.h"

#include <sys/types.h>

#include <sha2.h>

namespace applet_tools {

std::string sha256Of(const PictureView& picture) {
    SHA2_CTX context{};
    SHA256Init(&context);
    SHA256Update(&context, picture.bytes.data(), picture.bytes.size());
    char digits[SHA256_DIGEST_STRING_LENGTH];
    return SHA256End(&context, digits) != nullptr ? digits : "";
}

} // namespace applet_tools
