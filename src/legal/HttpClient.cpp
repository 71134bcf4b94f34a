#include "legal/HttpClient.h"

#include "foundation/TextCase.h"

#include <algorithm>

namespace querlin {

std::optional<std::string_view> HttpResponse::header(std::string_view name) const {
    const auto wanted = lowercase(name);
    const auto found =
        std::ranges::find(headers, wanted, [](const auto& row) { return lowercase(row.first); });
    return found == headers.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

} // namespace querlin
