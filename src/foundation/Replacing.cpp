#include "foundation/Replacing.h"

namespace querlin {

std::string replacingAll(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    result.reserve(text.size());
    while (true) {
        const auto at = text.find(from);
        result += text.substr(0, at);
        if (at == std::string_view::npos) return result;
        result += to;
        text.remove_prefix(at + from.size());
    }
}

} // namespace querlin
