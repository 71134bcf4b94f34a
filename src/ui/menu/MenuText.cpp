#include "ui/menu/MenuText.h"

#include "ui/brand/Brand.h"

namespace querlin::MenuText {

namespace {

constexpr qsizetype longestInCharacters = 80;

} // namespace

QString label(std::string_view title) {
    auto text = Brand::text(title).simplified();
    if (text.size() > longestInCharacters) {
        auto end = longestInCharacters - 1;
        if (text.at(end - 1).isHighSurrogate()) --end; // Never half of a surrogate pair.
        text = text.first(end).trimmed() + u'…';
    }
    return text.replace(u'&', QStringLiteral("&&"));
}

QKeySequence shortcut(char key) { return {QStringLiteral("Ctrl+") + QChar::fromLatin1(key).toUpper()}; }

} // namespace querlin::MenuText
