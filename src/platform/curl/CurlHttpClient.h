#pragma once

#include "foundation/MainQueue.h"
#include "legal/HttpClient.h"

#include <cstddef>
#include <expected>
#include <memory>

namespace querlin {

/// HTTP by libcurl, on a thread of its own. The environment's proxy settings count, the system's trusted
/// certificates too.
///
/// Requests run side by side, and connections are kept for the next one. Abandoning a request or destroying
/// the client never waits for the other side; what is under way then ends with an error. An address or a
/// user agent with a control character is an error and never reaches the wire. A timeout of 0 is over at
/// once. Main thread.
class CurlHttpClient final : public HttpClient {
public:
    /// `queue` is where the answers come; it outlives the client.
    explicit CurlHttpClient(MainQueue& queue, std::size_t bodyLimitInBytes = largestBodyInBytes);
    ~CurlHttpClient() override;
    CurlHttpClient(const CurlHttpClient&) = delete;
    CurlHttpClient& operator=(const CurlHttpClient&) = delete;

    Task<std::expected<HttpResponse, HttpError>> send(HttpRequest request) override;

private:
    class Worker;

    MainQueue& queue_;
    std::size_t bodyLimitInBytes_;
    std::shared_ptr<Worker> worker_;
};

} // namespace querlin
