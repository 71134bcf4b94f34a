#include "chain/Requests.h"

#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(Requests, AreAnsweredLineByLine) {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
    struct Row {
        const char* request;
        const char* answer;
    };
    const std::vector<Row> rows = {
        {R"({"id":7,"stage":"commands","text":"hallo Komma Welt"})",
         R"({"id":7,"text":"Hallo, Welt","discardedEverything":false,"appliedCommands":["komma"]})"},
        {R"({"id":"a","stage":"commands","text":"A Komma b","options":{"mode":"compact"}})",
         R"({"id":"a","text":"A,b","discardedEverything":false,"appliedCommands":["komma"]})"},
        {R"({"stage":"chain","text":"ähm Paragraph fünf BGB am 3. Mai 2024"})",
         R"({"id":null,"text":"§ 5 BGB am 03.05.2024.","discardedEverything":false})"},
        {R"({"id":1,"stage":"chain","text":"alles verwerfen"})", R"({"id":1,"text":"","discardedEverything":true})"},
        {R"({"id":1,"stage":"chain","text":"www Punkt a Punkt de","options":{"compact":true}})",
         R"({"id":1,"text":"www.a.de","discardedEverything":false})"},
        {R"({"id":1,"stage":"rules","text":"der Punkt","options":{"commandsApplied":true}})", R"({"id":1,"text":"Der Punkt."})"},
        {R"({"id":1,"stage":"blocks","text":"Vorlage x","options":{"blocks":[{"name":"X","content":"{Uhrzeit}"}],"now":"2026-03-14T08:05:00Z"}})",
         R"({"id":1,"text":"09:05","usedBlocks":["X"]})"},
        {R"({"id":1,"stage":"address","text":"Ende. Aus.","options":{"strict":false}})", R"({"id":1,"isAddress":true,"text":"ende.aus"})"},
        {R"({"id":1,"stage":"tokens","text":"Ja, §"})", R"({"id":1,"tokens":[["Ja,","ja"],[" §","§"]]})"},
        {R"({"id":1,"stage":"number","options":{"words":["eins","vier"]}})", R"({"id":1,"digits":"14"})"},
        {R"({"id":1,"stage":"correction","text":"ein Meier","options":{"new":"ein Mayer"}})",
         R"({"id":1,"recognizedWords":["Meier"],"corrected":"Mayer"})"},
        {R"({"id":1,"stage":"correction","text":"a","options":{"new":"a"}})", R"({"id":1,"recognizedWords":null,"corrected":null})"},
        {R"({"id":2,"stage":"nichts","text":"a"})", R"({"id":2,"error":"no such stage"})"},
        {R"([1])", R"({"id":null,"error":"no such stage"})"}};
    for (const auto& [request, expected] : rows) EXPECT_EQ(answer(request), expected);
    EXPECT_TRUE(answer("{").starts_with(R"({"id":null,"error":")"));
    EXPECT_TRUE(answer("\"\xFF\"").starts_with(R"({"id":null,"error":")"));
}

} // namespace
} // namespace querlin
