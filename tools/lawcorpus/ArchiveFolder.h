#pragma once

#include "legal/HttpClient.h"

#include <filesystem>

namespace querlin {

/// Stands in for the portal: a folder with `<slug>/xml.zip` for each law. The time of a file is its
/// Last-Modified; a missing law is answered with 404.
class ArchiveFolder final : public HttpClient {
public:
    explicit ArchiveFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

    Task<std::expected<HttpResponse, HttpError>> send(HttpRequest request) override;

private:
    std::filesystem::path folder_;
};

} // namespace querlin
