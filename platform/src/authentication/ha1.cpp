#include "authentication/md5.h"

#include <zarn/authentication/ha1.h>

namespace zarn::authentication {

std::string MakeHa1(std::string_view user, std::string_view realm, std::string_view password) {
    return Md5({user, realm, password});
}

} // namespace zarn::authentication
