#include "ui/lookup/HitList.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"

#include <algorithm>

#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

namespace querlin {

namespace {

constexpr int rowHeight = 50;
constexpr int margin = 12;
constexpr int titleRole = Qt::UserRole;
constexpr int priorityRole = Qt::UserRole + 1;

class HitDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const override {
        return {120, rowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto fill = fillOf(option.state);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (fill > 0) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(Brand::withOpacity(Brand::primary, fill));
            painter->drawRoundedRect(option.rect.adjusted(4, 2, -4, -2), Brand::Radius::control,
                                     Brand::Radius::control);
        }
        auto room = option.rect.adjusted(margin, 7, -margin, -7);
        if (index.data(priorityRole).toBool()) drawTag(*painter, room);
        drawLine(*painter, room, Brand::font(13, QFont::DemiBold), Theme::primaryText(),
                 index.data().toString(), Qt::AlignTop);
        drawLine(*painter, option.rect.adjusted(margin, 7, -margin, -7), Brand::font(11),
                 Theme::secondaryText(), index.data(titleRole).toString(), Qt::AlignBottom);
        painter->restore();
    }

private:
    /// The selected row is highlighted more strongly while the list has the focus.
    static double fillOf(QStyle::State state) {
        if (state.testFlag(QStyle::State_Selected))
            return state.testFlag(QStyle::State_HasFocus) ? 0.32 : 0.18;
        return state.testFlag(QStyle::State_MouseOver) ? 0.07 : 0;
    }
    static void drawLine(QPainter& painter, const QRect& room, const QFont& font, const QColor& color,
                         const QString& text, Qt::Alignment place) {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(room, static_cast<int>(Qt::AlignLeft | place),
                         QFontMetrics(font).elidedText(text, Qt::ElideRight, room.width()));
    }
    /// Drawn at the right edge, which it removes from the rectangle.
    static void drawTag(QPainter& painter, QRect& room) {
        const auto font = Brand::font(10, QFont::Medium);
        const auto text = QStringLiteral("Betreuung");
        const int width = QFontMetrics(font).horizontalAdvance(text) + 12;
        const QRect tag(room.right() - width, room.top() - 1, width, 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Brand::withOpacity(Brand::primary, 0.14));
        painter.drawRoundedRect(tag, 5, 5);
        painter.setFont(font);
        painter.setPen(Theme::appearance().get() == Appearance::dark ? Brand::heroSubtitle
                                                                     : Brand::primaryDeep);
        painter.drawText(tag, Qt::AlignCenter, text);
        room.setRight(tag.left() - 8);
    }
};

} // namespace

HitList::HitList(Gestures gestures) : gestures_(std::move(gestures)) {
    setItemDelegate(new HitDelegate(this));
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setUniformItemSizes(true);
    setMouseTracking(true);
    setAccessibleName(QStringLiteral("Gefundene Paragraphen"));
    connect(this, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) gestures_.onSelect(static_cast<std::size_t>(row));
    });
    connect(this, &QListWidget::itemDoubleClicked, this, [this] { gestures_.onOpen(); });
}

void HitList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Up && event->modifiers() == Qt::NoModifier && currentRow() <= 0) {
        gestures_.onLeaveUpwards();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        gestures_.onOpen();
    } else {
        QListWidget::keyPressEvent(event);
    }
}

void HitList::setHits(const std::vector<LegalHit>& hits) {
    const QSignalBlocker quiet(this);
    clear();
    for (const auto& hit : hits) {
        auto* item = new QListWidgetItem(Brand::text(hit.section.citation(hit.law)), this);
        const std::string_view title = hit.section.title;
        const auto shown = title.empty() ? QStringLiteral("(ohne Überschrift)") : Brand::text(title);
        item->setData(titleRole, shown);
        item->setData(priorityRole, hit.section.priority);
        item->setData(Qt::AccessibleTextRole,
                      item->text() + QStringLiteral(", ") + shown +
                          (hit.section.priority ? QStringLiteral(", Betreuung") : QString()));
    }
}

void HitList::choose(const std::vector<LegalHit>& hits, const LegalHit& hit) {
    const QSignalBlocker quiet(this);
    const auto found =
        std::ranges::find_if(hits, [&](const LegalHit& other) { return other.id() == hit.id(); });
    setCurrentRow(found == hits.end() ? -1 : static_cast<int>(found - hits.begin()));
    viewport()->update();
}

} // namespace querlin
