#pragma once

#include <string>
#include <string_view>

/// Texts as a notification service takes them: valid for the bus whatever is in them. UTF-8 out.
namespace querlin::NotificationText {

/// One line: "Nicht\nzugestellt" -> "Nicht zugestellt". Control characters go, ill-formed bytes and
/// noncharacters become U+FFFD.
std::string title(std::string_view text);

enum class Markup : bool { no, yes };
/// The same with its line ends. Where the service reads markup, what would be taken for it is written out:
/// "A & <B>" -> "A &amp; &lt;B&gt;".
std::string body(std::string_view text, Markup markup);

} // namespace querlin::NotificationText
