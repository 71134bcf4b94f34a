#include "lawcorpus/ArchiveFolder.h"

#include "foundation/Files.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

namespace querlin {

Task<std::expected<HttpResponse, HttpError>> ArchiveFolder::send(HttpRequest request) {
    const std::filesystem::path address(request.address);
    const auto file = folder_ / address.parent_path().filename() / address.filename();
    const auto changed = Files::modificationTime(file);
    HttpResponse response;
    response.status = changed ? 200 : 404;
    if (!changed) co_return response;
    const auto seconds = std::chrono::system_clock::to_time_t(*changed);
    response.headers.emplace_back("Last-Modified",
                                  fmt::format("{:%a, %d %b %Y %H:%M:%S GMT}", fmt::gmtime(seconds)));
    if (request.method == HttpRequest::Method::head) co_return response;
    auto archive = Files::read(file, largestBodyInBytes);
    if (!archive) {
        HttpError error{archive.error().description()};
        co_return std::unexpected(std::move(error));
    }
    response.body = std::move(*archive);
    co_return response;
}

} // namespace querlin
