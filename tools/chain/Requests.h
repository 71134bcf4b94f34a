#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// Answers one request, a line of JSON, with a line of JSON without its line break:
///
///     {"id":7,"stage":"commands","text":"hallo Komma Welt","options":{"mode":"prose"}}
///     {"id":7,"text":"Hallo, Welt","discardedEverything":false,"appliedCommands":["komma"]}
///
/// Stages and their options:
///
///     chain          style, mode, compact, commands, blocks, now
///     normalize      –
///     commands       mode: "prose" or "compact"
///     punctuation    –
///     rules          commandsApplied
///     blocks         blocks: [{"name","content"}], now: "2026-03-14T08:05:00Z"
///     citations      –
///     legal          –
///     address        strict
///     tokens         –
///     number         words: [...]
///     words          –
///     correction     new
///     stripWrapping  –
///
/// A missing option, or one of another type, gets its default. A request that can't be read is answered with
/// "error" and the reason.
std::string answer(std::string_view request);

} // namespace querlin
