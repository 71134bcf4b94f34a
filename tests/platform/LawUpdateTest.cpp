// A whole update of the laws: the real service and client, and a server on this machine's loopback in place of the
// portal.

#include "foundation/Json.h"
#include "foundation/RunLoop.h"
#include "foundation/ThreadPool.h"
#include "legal/LegalUpdateService.h"
#include "platform/curl/CurlHttpClient.h"
#include "support/Archives.h"
#include "support/Laws.h"
#include "support/LoopbackServer.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

class LawUpdateTest : public ::testing::Test {
protected:
    LegalManifestEntry rowOf(const std::string& abbr) const {
        LegalManifestEntry row;
        row.abbr = row.slug = abbr;
        row.source = server.address("/" + abbr + "/xml.zip");
        return row;
    }
    void serve(const std::string& abbr, LoopbackServer::Answer answer) { server.set("/" + abbr + "/xml.zip", std::move(answer)); }
    static LoopbackServer::Answer dated(std::string_view body, int status = 200, std::optional<std::size_t> claimedLength = {}) {
        return LoopbackServer::Answer::of(body, "Last-Modified: Mon, 01 Jan 2024 00:00:00 GMT\r\n", status, claimedLength);
    }
    void deliver(const std::vector<std::string>& abbrs) {
        LegalManifest manifest;
        for (const auto& abbr : abbrs) manifest.laws.push_back(rowOf(abbr));
        laws.deliver({});
        writeFile(laws.folder / "Ressourcen/LegalManifest.json", Json::compact(toJson(manifest)));
    }
    LegalUpdateService::Stage check() {
        PreferencesStore preferences(laws.folder / "Einstellungen.json", runtime);
        AppSettings settings(preferences);
        CurlHttpClient client(loop);
        LegalUpdateService service(settings, laws.store, corpus, client, runtime);
        const auto end = service.stage.subscribe(
            [&](const auto&) {
                if (!service.isRunning()) loop.quit();
            },
            FirstValue::Skip);
        const auto limit = loop.after(std::chrono::minutes(1), [this] { loop.quit(); });
        loop.post([&service] { service.checkNow(); });
        loop.run();
        return service.stage.get();
    }

    LawFolders laws;
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool{1};
    Runtime runtime{loop, clock, pool};
    LegalCorpus corpus{laws.store, runtime};
    LoopbackServer server;
};

TEST_F(LawUpdateTest, SurvivesAllThatAPortalMayDo) {
    const auto archive = archiveOf({{"M.xml", contentOf(fs::path(QUERLIN_TEST_LAWS) / "mbtg.xml")}});
    serve("gut", dated(archive));
    const auto chunk = fmt::format("{:x}\r\n{}\r\n0\r\n\r\n", archive.size(), archive);
    const auto head = std::string("HTTP/1.1 200 OK\r\nlast-modified: Montag\r\nTransfer-Encoding: chunked\r\n\r\n");
    serve("langsam", {.bytes = head + chunk, .pieceInBytes = 200, .pause = std::chrono::milliseconds(2)});
    serve("umgezogen", LoopbackServer::Answer::redirect(server.address("/gut/xml.zip")));
    serve("halb", dated(archive.substr(0, archive.size() / 2), 200, archive.size()));
    serve("kaputt", dated("<html>Fehler</html>", 500));
    serve("weg", {});
    deliver({"gut", "langsam", "umgezogen", "halb", "kaputt", "fehlt", "weg"});

    EXPECT_TRUE(check() == LegalUpdateService::Stage(LegalUpdateStage::Updated{{"gut", "langsam", "umgezogen"}}));
    EXPECT_EQ(corpus.section("1a", "umgezogen")->title, "Listen");

    serve("halb", dated(archive));
    EXPECT_TRUE(check() == LegalUpdateService::Stage(LegalUpdateStage::Updated{{"halb"}}))
        << "what failed is tried again, and nothing else";
}

} // namespace
} // namespace querlin
