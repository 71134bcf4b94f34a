#pragma once

#include "support/Archives.h"

#include "foundation/Waiting.h"
#include "legal/HttpClient.h"

#include <map>
#include <string>

#include <fmt/format.h>

namespace querlin {

/// A law of the portal with sections from 1 on, all of one text.
inline std::string lawArchive(std::string_view name, int sections, std::string_view text) {
    auto document = fmt::format("<dokumente><norm builddate=\"20250102030405\"><metadaten><langue>{}</langue>"
                                "<standangabe><standtyp>Stand</standtyp><standkommentar>Stand {}</standkommentar>"
                                "</standangabe></metadaten></norm>",
                                name, text.substr(0, 40));
    for (int i = 1; i <= sections; ++i)
        document += fmt::format("<norm><metadaten><enbez>§ {}</enbez></metadaten><text>{}</text></norm>", i, text);
    return archiveOf({{"BJNR.xml", document + "</dokumente>"}});
}

/// A portal that is scripted address by address, and takes a tenth of a second for each answer.
class FakePortal final : public HttpClient {
public:
    explicit FakePortal(MainQueue& queue) : queue_(queue) {}

    struct Page {
        std::string lastModified;
        std::string body;
        /// Nobody answers.
        std::string headError = {};
        std::string getError = {};
        /// The second answer says nothing of its age.
        bool getIsAgeless = false;
    };
    std::map<std::string, Page> pages;
    int requests = 0;
    int atOnce = 0;

    Task<std::expected<HttpResponse, HttpError>> send(HttpRequest request) override {
        const bool isHead = request.method == HttpRequest::Method::head;
        ++requests;
        ++atOnce;
        EXPECT_EQ(atOnce, 1) << "one request after the other";
        co_await sleepFor(queue_, seconds(0.1));
        --atOnce;
        const auto page = pages[request.address];
        if (auto error = isHead ? page.headError : page.getError; !error.empty()) {
            HttpError failure{std::move(error)};
            co_return std::unexpected(std::move(failure));
        }
        HttpResponse response;
        response.status = page.lastModified.empty() ? 404 : 200;
        if (!page.lastModified.empty() && (isHead || !page.getIsAgeless)) response.headers.emplace_back("last-modified", page.lastModified);
        if (!isHead) response.body = page.body;
        co_return response;
    }

private:
    MainQueue& queue_;
};

} // namespace querlin
