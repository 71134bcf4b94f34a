#include "QtLawReader.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>

#include <QRegularExpression>
#include <QString>
#include <QXmlStreamReader>

namespace querlin::bench {

namespace {

enum class Element : std::uint8_t {
    other,
    norm,
    metadaten,
    text,
    standangabe,
    langue,
    enbez,
    titel,
    standtyp,
    standkommentar,
    gliederungskennzahl,
    gliederungsbez,
    gliederungstitel,
    paragraph,
    line,
    cell
};

constexpr auto elementNames = std::to_array<std::pair<QStringView, Element>>({
    {u"P", Element::paragraph},
    {u"DT", Element::line},
    {u"BR", Element::line},
    {u"tr", Element::line},
    {u"row", Element::line},
    {u"td", Element::cell},
    {u"entry", Element::cell},
    {u"norm", Element::norm},
    {u"metadaten", Element::metadaten},
    {u"text", Element::text},
    {u"enbez", Element::enbez},
    {u"titel", Element::titel},
    {u"langue", Element::langue},
    {u"standangabe", Element::standangabe},
    {u"standtyp", Element::standtyp},
    {u"standkommentar", Element::standkommentar},
    {u"gliederungskennzahl", Element::gliederungskennzahl},
    {u"gliederungsbez", Element::gliederungsbez},
    {u"gliederungstitel", Element::gliederungstitel},
});

Element elementNamed(QStringView name) {
    const auto* found = std::ranges::find(elementNames, name, &std::pair<QStringView, Element>::first);
    return found == elementNames.end() ? Element::other : found->second;
}

QString cleaned(QStringView text) {
    QString result;
    result.reserve(text.size());
    qsizetype lineFeeds = 0;
    bool hasBlank = false;
    for (const QChar unit : text) {
        if (unit == u'\n') {
            ++lineFeeds;
        } else if (unit == u' ' || unit == u'\u00A0') {
            hasBlank = true;
        } else {
            if (lineFeeds > 0) {
                result.append(QString(std::min<qsizetype>(lineFeeds, 2), u'\n'));
            } else if (hasBlank) {
                result.append(u' ');
            }
            lineFeeds = 0;
            hasBlank = false;
            result.append(unit);
        }
    }
    return result.trimmed();
}

/// Keeps the state between the reader's tokens.
class Reader {
public:
    Reader(std::string_view document, std::span<const LegalManifestEntry::Range> priorityRanges) :
        xml_(QByteArray::fromRawData(document.data(), static_cast<qsizetype>(document.size()))),
        priorityRanges_(priorityRanges) {}

    PlainLaw read() {
        while (!xml_.atEnd()) {
            switch (xml_.readNext()) {
            case QXmlStreamReader::StartElement:
                begin(elementNamed(xml_.name()));
                break;
            case QXmlStreamReader::Characters:
                characters(xml_.text());
                break;
            case QXmlStreamReader::EndElement:
                end();
                break;
            default:
                break;
            }
        }
        if (xml_.hasError()) throw std::runtime_error(xml_.errorString().toStdString());
        law_.name = name_.toStdString();
        law_.stand = stand_.toStdString();
        return std::move(law_);
    }

private:
    void begin(Element element) {
        switch (element) {
        case Element::norm:
            if (isFirstNorm_)
                law_.builddate =
                    xml_.attributes().value(QStringLiteral("builddate")).toString().toStdString();
            for (auto* buffer : {&enbez_, &titel_, &kennzahl_, &bez_, &gliederungstitel_, &text_})
                buffer->resize(0);
            break;
        case Element::metadaten:
            inMetadata_ = true;
            break;
        case Element::text:
            inText_ = true;
            text_.resize(0);
            break;
        case Element::standangabe:
            standtyp_.resize(0);
            standkommentar_.resize(0);
            break;
        default:
            if (!inText_) break;
            if (element == Element::paragraph) text_.append(u"\n\n");
            if (element == Element::line) text_.append(u'\n');
            if (element == Element::cell) text_.append(u'\t');
        }
        path_.push_back(element);
    }

    void characters(QStringView text) {
        if (path_.empty()) return;
        if (inText_) {
            const auto start = text_.size();
            text_.append(text);
            std::replace(text_.begin() + start, text_.end(), QChar(u'\t'), QChar(u' '));
        } else if (auto* buffer = inMetadata_ ? bufferOf(path_.back()) : nullptr) {
            buffer->append(text);
        }
    }

    QString* bufferOf(Element element) {
        switch (element) {
        case Element::langue:
            return isFirstNorm_ ? &name_ : nullptr;
        case Element::enbez:
            return &enbez_;
        case Element::titel:
            return &titel_;
        case Element::standtyp:
            return &standtyp_;
        case Element::standkommentar:
            return &standkommentar_;
        case Element::gliederungskennzahl:
            return &kennzahl_;
        case Element::gliederungsbez:
            return &bez_;
        case Element::gliederungstitel:
            return &gliederungstitel_;
        default:
            return nullptr;
        }
    }

    void end() {
        const auto element = path_.back();
        path_.pop_back();
        switch (element) {
        case Element::metadaten:
            inMetadata_ = false;
            break;
        case Element::text:
            inText_ = false;
            break;
        case Element::standangabe:
            if (standtyp_.trimmed() == u"Stand" && stand_.isEmpty()) stand_ = standkommentar_.trimmed();
            break;
        case Element::norm:
            finishNorm();
            isFirstNorm_ = false;
            break;
        default:
            break;
        }
    }

    void finishNorm() {
        if (const auto code = kennzahl_.trimmed(); !code.isEmpty()) {
            const auto level = code.size() / 3;
            const auto bez = bez_.trimmed();
            const auto titel = gliederungstitel_.trimmed();
            hierarchy_[level] =
                bez + (bez.isEmpty() || titel.isEmpty() ? QString() : QStringLiteral(" – ")) + titel;
            hierarchy_.erase(hierarchy_.upper_bound(level), hierarchy_.end());
            return;
        }
        static const QRegularExpression pattern(QStringLiteral(R"(^§+\s*(\d+)([a-z]*))"),
                                                QRegularExpression::CaseInsensitiveOption |
                                                    QRegularExpression::UseUnicodePropertiesOption);
        const auto designation = enbez_.trimmed();
        const auto number = pattern.match(designation);
        if (!number.hasMatch()) return;
        const auto text = cleaned(text_);
        if (text.isEmpty()) return;
        PlainSection section;
        const auto suffix = number.captured(2).toLower();
        section.number = number.captured(1).toLongLong();
        section.priority = std::ranges::any_of(priorityRanges_, [&](const auto& range) {
            return range.first <= section.number && section.number <= range.second;
        });
        section.id = (number.captured(1) + suffix).toStdString();
        section.suffix = suffix.toStdString();
        section.label = designation.toStdString();
        section.title = titel_.trimmed().toStdString();
        QString path;
        for (const auto& [level, heading] : hierarchy_)
            path.append(QStringView(path.isEmpty() ? u"" : u" / ")).append(heading);
        section.path = path.toStdString();
        section.text = text.toStdString();
        law_.sections.push_back(std::move(section));
    }

    QXmlStreamReader xml_;
    std::span<const LegalManifestEntry::Range> priorityRanges_;
    PlainLaw law_;

    std::vector<Element> path_;
    bool inText_ = false;
    bool inMetadata_ = false;
    bool isFirstNorm_ = true;
    std::map<qsizetype, QString> hierarchy_;

    QString name_;
    QString stand_;
    QString text_;
    QString enbez_;
    QString titel_;
    QString standtyp_;
    QString standkommentar_;
    QString kennzahl_;
    QString bez_;
    QString gliederungstitel_;
};

} // namespace

PlainLaw readWithQt(std::string_view document, std::span<const LegalManifestEntry::Range> priorityRanges) {
    return Reader(document, priorityRanges).read();
}

} // namespace querlin::bench
