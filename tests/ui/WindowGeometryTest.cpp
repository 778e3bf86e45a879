// The window at the sizes people use it, from the minimum up: on every screen each
// visible control lies inside the window and inside the card or layout that holds it,
// no two controls of one row or column overlap, no button's text is cut, and a window
// resized from small to large looks exactly as a window opened at that size.

#include "WindowFixture.h"
#include "ui/WindowSearch.h"

#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>

#include <QGuiApplication>
#include <QPalette>

#include <cmath>
#include <functional>
#include <map>
#include <set>
#include <utility>

namespace {

bool arranges(const QQuickItem* item) {
    return item->inherits("QQuickLayout") || item->inherits("QQuickBasePositioner");
}

bool isCard(const QQuickItem* item) {
    const QByteArray name = item->metaObject()->className();
    return name.startsWith("Card_QMLTYPE") || name.startsWith("GlassCapsule_QMLTYPE");
}

bool shows(const QQuickItem* item) {
    return item->isVisible() && item->opacity() > 0.01 && item->width() > 0.5 && item->height() > 0.5;
}

QRectF sceneRect(const QQuickItem* item) {
    return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
}

bool inside(const QRectF& inner, const QRectF& outer) {
    return inner.adjusted(1, 1, -1, -1).isEmpty() || outer.adjusted(-1, -1, 1, 1).contains(inner);
}

QString describe(const QQuickItem* item) {
    const QRectF r = sceneRect(item);
    return QString::asprintf(
        "%s [%g,%g %gx%g]",
        qPrintable(item->objectName().isEmpty() ? item->metaObject()->className() : item->objectName()),
        r.x(), r.y(), r.width(), r.height());
}

// Where a screen's named items are, for comparing one window with another. Rows share
// a name: the topmost of them stands for all (a list makes more or fewer of them).
using Places = std::map<QString, QRectF>;

} // namespace

class WindowGeometry : public WindowTest {
protected:
    // The Theme singleton the window's views use.
    QObject* theme() {
        QQmlExpression expression(qmlContext(window()), window(), QStringLiteral("Theme"));
        return expression.evaluate().value<QObject*>();
    }
    // Waits until nothing moves: no layout pending and every named item where it was.
    bool settledAll() {
        Places last;
        return steady([&] {
            Places now = places(false);
            return std::exchange(last, now) == now;
        });
    }

    // Named items' places; `inPage`: inside a scrolling page relative to the page's
    // content, so that a page scrolled elsewhere does not count as moved.
    Places places(bool inPage = true) {
        Places found;
        std::function<void(QQuickItem*, QQuickItem*)> walk = [&](QQuickItem* item, QQuickItem* frame) {
            if (!shows(item))
                return;
            if (!item->objectName().isEmpty()) {
                const QRectF place =
                    frame ? item->mapRectToItem(frame, item->boundingRect()) : sceneRect(item);
                auto [at, fresh] = found.try_emplace(item->objectName(), place);
                if (!fresh && std::pair(place.y(), place.x()) < std::pair(at->second.y(), at->second.x()))
                    at->second = place;
            }
            QQuickItem* content = inPage && item->inherits("QQuickFlickable")
                                      ? item->property("contentItem").value<QQuickItem*>()
                                      : nullptr;
            for (QQuickItem* child : item->childItems())
                walk(child, content ? content : frame);
        };
        walk(window()->contentItem(), nullptr);
        return found;
    }

    // Every fault on the screen shown now, one line each.
    QStringList faults() {
        QStringList found;
        std::vector<QQuickItem*> bars;
        const QRectF windowRect(0, 0, window()->width(), window()->height());
        std::function<void(QQuickItem*, const QQuickItem*, const QQuickItem*)> walk =
            [&](QQuickItem* item, const QQuickItem* card, const QQuickItem* scroller) {
                // A bar may be empty; its track is what lines up.
                if (item->objectName().startsWith(QLatin1String("systemBar_")))
                    bars.push_back(item);
                if (!shows(item))
                    return;
                const QRectF rect = sceneRect(item);
                const bool control = item->inherits("QQuickControl") && !item->inherits("QQuickPopupItem");
                if (control) {
                    QRectF allowed = windowRect;
                    // A scrolled page may hold controls above or below its view, never beside it.
                    if (scroller) {
                        const QRectF view = sceneRect(scroller);
                        allowed = QRectF(view.x(), -1e9, view.width(), 2e9);
                    }
                    if (!inside(rect, allowed))
                        found << describe(item) + " leaves the window";
                    if (card && !inside(rect, sceneRect(card)))
                        found << describe(item) + " leaves its card " + describe(card);
                }
                if (item->inherits("QQuickAbstractButton"))
                    for (auto* text : item->findChildren<QQuickItem*>())
                        if (text->inherits("QQuickText") && shows(text) &&
                            text->property("truncated").toBool())
                            found << describe(item) + " cuts its text";
                if (arranges(item)) {
                    std::vector<QQuickItem*> shown;
                    for (QQuickItem* child : item->childItems())
                        if (shows(child))
                            shown.push_back(child);
                    for (size_t i = 0; i < shown.size(); ++i) {
                        if (!inside(sceneRect(shown[i]), rect))
                            found << describe(shown[i]) + " leaves " + describe(item);
                        for (size_t j = i + 1; j < shown.size(); ++j)
                            if (sceneRect(shown[i]).adjusted(1, 1, -1, -1).intersects(sceneRect(shown[j])))
                                found << describe(shown[i]) + " overlaps " + describe(shown[j]);
                    }
                }
                const QQuickItem* innerCard = isCard(item) ? item : card;
                const QQuickItem* innerScroller =
                    item->inherits("QQuickFlickable") && item->clip() ? item : scroller;
                for (QQuickItem* child : item->childItems())
                    walk(child, innerCard, innerScroller);
            };
        walk(window()->contentItem(), nullptr, nullptr);

        // The overview's cards pass under the action bar instead of ending above it.
        if (auto* page =
                qobject_cast<QQuickItem*>(WindowSearch::firstNamed(window(), QStringLiteral("overviewPage")));
            page && shows(page))
            if (sceneRect(page).bottom() < windowRect.bottom() - 1)
                found << "the overview ends above the action bar";
        // The System Data rows of one card end their bars and sizes at one line.
        std::map<const QQuickItem*, std::set<std::pair<int, int>>> columnsByCard;
        for (QQuickItem* bar : bars) {
            const QQuickItem* card = bar;
            while (card && !isCard(card))
                card = card->parentItem();
            if (auto* size = item(bar->objectName().replace("systemBar_", "systemSize_")))
                columnsByCard[card].insert(
                    {qRound(sceneRect(bar->parentItem()).right()), qRound(sceneRect(size).right())});
        }
        for (const auto& [card, columns] : columnsByCard)
            if (columns.size() > 1)
                found << QStringLiteral("System Data rows of one card do not line up");

        // The row chosen in the sidebar is in sight.
        for (const QString& name : {QStringLiteral("overviewRow"), QStringLiteral("systemDataRow")}) {
            QQuickItem* row = item(name);
            if (row->property("selected").toBool() && !inside(sceneRect(row), sceneRect(item("sidebarList"))))
                found << name + " is chosen but out of sight";
        }
        return found;
    }

    // "overview", "systemData" or "category:<id>", laid out. The route loads its screen at once.
    void showScreen(const QString& screen) {
        const bool category = screen.startsWith(QLatin1String("category:"));
        navigate(category ? QStringLiteral("category") : screen, category ? screen.mid(9) : QString());
        ASSERT_TRUE(settledAll());
    }
};

TEST_F(WindowGeometry, EveryScreenFitsEverySize) {
    // Places are compared at rest: without motion, rows that join a screen shown again
    // do not slide in while they are measured.
    ReduceMotionScope still(true);
    // Large files in one folder, so that their screen shows it in the header.
    home().makeFileOfSize("Library/Caches/com.example.a-rather-long-bundle-name.helper/blob.bin", 900'000);
    home().makeFileOfSize("Projects/big/disk-image.iso", 3'000'000);
    home().makeFileOfSize("Projects/big/second-image.iso", 2'200'000);
    model().setLargeThresholdGB(0.001);
    ASSERT_TRUE(scanToEnd());

    const QStringList screens{"overview", "systemData", "category:user.caches", "category:large.files"};
    const QSize sizes[] = {{1180, 760}, {960, 600}, {1180, 760}, {1400, 900}};
    // Plain, then with a search folder and checked items.
    for (const bool varied : {false, true}) {
        if (varied) {
            home().makeDir("Projects/a folder with a long name");
            model().addRoots({home().path("Projects/a folder with a long name")});
            ASSERT_TRUE(scanToEnd());
            model().setAll(QStringLiteral("user.caches"), true);
            model().setAll(QStringLiteral("large.files"), true);
        }
        std::map<QString, Places> fresh;
        for (const QSize& size : sizes) {
            window()->resize(size);
            ASSERT_TRUE(UiHarness::waitFor([&] { return window()->size() == size; }) && settledAll());
            for (const QString& screen : screens) {
                showScreen(screen);
                const std::string where = QString::asprintf("%s at %d×%d%s", qPrintable(screen), size.width(),
                                                            size.height(), varied ? ", varied" : "")
                                              .toStdString();
                const QStringList found = faults();
                EXPECT_TRUE(found.isEmpty()) << where << ":\n" << found.join('\n').toStdString();
                // Back at a size seen before, after a smaller one: the same picture.
                const QString key = screen + QString::number(size.width());
                if (!fresh.count(key)) {
                    fresh[key] = places();
                    continue;
                }
                // A layout left wrong by the smaller size stays wrong; a row still sliding
                // in after the screen was shown again comes to rest.
                QStringList moved;
                UiHarness::waitFor(
                    [&] {
                        moved.clear();
                        for (const auto& [name, rect] : places())
                            if (fresh[key].count(name) && fresh[key].at(name) != rect)
                                moved << name;
                        return moved.isEmpty();
                    },
                    3000);
                EXPECT_TRUE(moved.isEmpty())
                    << where << ": moved after resizing: " << moved.join(", ").toStdString();
            }
        }
    }
}

namespace {

// WCAG contrast of `text` over `back`, each blended over what lies below it.
double contrast(const QColor& text, const QColor& back, const QColor& under) {
    auto over = [](const QColor& top, const QColor& below) {
        const double a = top.alphaF(), b = 1 - a;
        return QColor::fromRgbF(top.redF() * a + below.redF() * b, top.greenF() * a + below.greenF() * b,
                                top.blueF() * a + below.blueF() * b);
    };
    auto luminance = [](const QColor& c) {
        auto linear = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF()) + 0.05;
    };
    const QColor ground = over(back, under);
    const double a = luminance(over(text, ground)), b = luminance(ground);
    return std::max(a, b) / std::min(a, b);
}

} // namespace

// The chosen value of a picker and the help of a button read in a light and a dark
// palette.
TEST_F(WindowGeometry, ChosenValueAndHelpReadInLightAndDark) {
    ASSERT_TRUE(scanToEnd());
    showScreen(QStringLiteral("category:large.files"));
    QObject* picker = find(QStringLiteral("minimumSizePicker"));
    ASSERT_NE(picker, nullptr);
    const QPalette original = QGuiApplication::palette();
    for (const bool dark : {false, true}) {
        QPalette palette = original;
        palette.setColor(QPalette::Window, dark ? QColor(30, 30, 32) : QColor(236, 236, 238));
        QGuiApplication::setPalette(palette);
        ASSERT_TRUE(UiHarness::waitFor([&] { return theme()->property("dark").toBool() == dark; }));
        const QColor window = theme()->property("windowColor").value<QColor>();

        auto* popup = picker->property("popup").value<QObject*>();
        QMetaObject::invokeMethod(popup, "open");
        ASSERT_TRUE(UiHarness::waitFor([&] { return popup->property("opened").toBool(); }));
        auto* list = popup->property("contentItem").value<QQuickItem*>();
        QQuickItem* chosen = nullptr;
        QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, chosen),
                                  Q_ARG(int, picker->property("currentIndex").toInt()));
        ASSERT_NE(chosen, nullptr);
        ASSERT_TRUE(chosen->property("highlighted").toBool());
        auto colourOf = [](QObject* owner, const char* part) {
            return owner->property(part).value<QObject*>()->property("color").value<QColor>();
        };
        EXPECT_GE(contrast(colourOf(chosen, "contentItem"), colourOf(chosen, "background"), window), 3.0)
            << (dark ? "dark" : "light");
        QMetaObject::invokeMethod(popup, "close");

        // The help of a button, in the same look.
        QQuickItem* button = item(QStringLiteral("toolbarButton"));
        ASSERT_NE(button, nullptr);
        QObject* help = nullptr;
        for (QObject* child : button->children())
            if (child->inherits("QQuickToolTip"))
                help = child;
        ASSERT_NE(help, nullptr);
        help->setProperty("delay", 0);
        help->setProperty("shown", true);
        ASSERT_TRUE(UiHarness::waitFor([&] { return help->property("opened").toBool(); }));
        EXPECT_GE(contrast(colourOf(help, "contentItem"), colourOf(help, "background"), window), 4.5);
        help->setProperty("shown", false);
    }
    QGuiApplication::setPalette(original);
}
