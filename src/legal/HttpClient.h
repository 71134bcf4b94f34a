#pragma once

#include "foundation/Task.h"
#include "foundation/Time.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace querlin {

struct HttpRequest {
    enum class Method : std::uint8_t { head, get };

    Method method = Method::get;
    /// An absolute http or https address.
    std::string address;
    /// For the whole exchange, redirects included.
    Duration timeout{};
    std::string userAgent;
};

struct HttpResponse {
    int status = 0;
    /// Of the last response alone, in their order; names as the server wrote them.
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;

    /// A header's value; case doesn't count in its name (RFC 9110). Of several the first.
    std::optional<std::string_view> header(std::string_view name) const;
};

/// The exchange failed: nobody answered, not in time, or not in a way that can be understood.
struct HttpError {
    /// In German, for the user and the log.
    std::string description;

    bool operator==(const HttpError&) const = default;
};

/// The machine's HTTP client (RFC 9110).
///
/// What callers rely on: redirects are followed, but not from https to http and to no other scheme; any
/// status is a response and no error; a body of more than `largestBodyInBytes` is an error. Neither cookies
/// nor credentials are sent or kept. Abandoning the task withdraws the request. Main thread.
class HttpClient {
public:
    static constexpr std::size_t largestBodyInBytes = 64U << 20U;

    virtual ~HttpClient() = default;
    virtual Task<std::expected<HttpResponse, HttpError>> send(HttpRequest request) = 0;
};

} // namespace querlin
