// The window at the sizes people use it, from the minimum up: on every screen each
// visible control lies inside the window and inside the card or layout that holds it,
// no two controls of one row or column overlap, no button's text is cut, and a window
// resized from small to large looks exactly as a window opened at that size.

#include "UiHarness.h"
#include "WindowFixture.h"
#include "ui/WindowSearch.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QQuickItem>
#include <QtQuickTest/quicktest.h>

#include <QGuiApplication>
#include <QPalette>

#include <cmath>
#include <functional>
#include <map>
#include <set>

namespace {

bool isA(const QObject* object, const char* className) {
    return object->inherits(className);
}

bool arranges(const QQuickItem* item) {
    for (const char* type : {"QQuickLayout", "QQuickBasePositioner"})
        if (isA(item, type))
            return true;
    return false;
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

std::string describe(const QQuickItem* item) {
    const QString name = item->objectName().isEmpty() ? item->metaObject()->className() : item->objectName();
    const QRectF r = sceneRect(item);
    return QStringLiteral("%1 [%2,%3 %4x%5]")
        .arg(name)
        .arg(r.x())
        .arg(r.y())
        .arg(r.width())
        .arg(r.height())
        .toStdString();
}

// Where a screen's named items are, for comparing one window with another.
using Places = std::map<QString, QRectF>;

} // namespace

class WindowGeometry : public WindowTest {
protected:
    // The Theme singleton the window's views use.
    QObject* theme() {
        QQmlExpression expression(qmlContext(window()), window(), QStringLiteral("Theme"));
        return expression.evaluate().value<QObject*>();
    }
    void resize(int width, int height) {
        window()->resize(width, height);
        ASSERT_TRUE(
            UiHarness::waitFor([&] { return window()->width() == width && window()->height() == height; }));
        ASSERT_TRUE(settledAll());
    }

    // Waits until nothing moves: no layout pending and every named item where it was.
    bool settledAll() {
        Places last;
        int steady = 0;
        return UiHarness::waitFor(
            [&] {
                if (QQuickTest::qIsPolishScheduled(window()))
                    return (steady = 0) != 0;
                window()->update();
                const Places now = places(false);
                steady = now == last ? steady + 1 : 0;
                last = now;
                return steady >= 3;
            },
            10000);
    }

    // Named items' places; `inPage`: inside a scrolling page relative to the page's
    // content, so that a page scrolled elsewhere does not count as moved.
    Places places(bool inPage = true) {
        Places found;
        std::function<void(QQuickItem*, QQuickItem*)> walk = [&](QQuickItem* item, QQuickItem* frame) {
            if (!shows(item))
                return;
            if (!item->objectName().isEmpty())
                found[item->objectName()] =
                    frame ? item->mapRectToItem(frame, item->boundingRect()) : sceneRect(item);
            QQuickItem* content = inPage && isA(item, "QQuickFlickable")
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
                const bool control = isA(item, "QQuickControl") && !isA(item, "QQuickPopupItem");
                if (control) {
                    QRectF allowed = windowRect;
                    // A scrolled page may hold controls above or below its view, never beside it.
                    if (scroller) {
                        const QRectF view = sceneRect(scroller);
                        allowed = QRectF(view.x(), -1e9, view.width(), 2e9);
                    }
                    if (!inside(rect, allowed))
                        found << QString::fromStdString(describe(item) + " leaves the window");
                    if (card && !inside(rect, sceneRect(card)))
                        found << QString::fromStdString(describe(item) + " leaves its card " +
                                                        describe(card));
                }
                if (isA(item, "QQuickAbstractButton"))
                    for (auto* text : item->findChildren<QQuickItem*>())
                        if (isA(text, "QQuickText") && shows(text) && text->property("truncated").toBool())
                            found << QString::fromStdString(describe(item) + " cuts its text");
                if (arranges(item)) {
                    std::vector<QQuickItem*> shown;
                    for (QQuickItem* child : item->childItems())
                        if (shows(child))
                            shown.push_back(child);
                    for (size_t i = 0; i < shown.size(); ++i) {
                        if (!inside(sceneRect(shown[i]), rect))
                            found << QString::fromStdString(describe(shown[i]) + " leaves " + describe(item));
                        for (size_t j = i + 1; j < shown.size(); ++j)
                            if (sceneRect(shown[i]).adjusted(1, 1, -1, -1).intersects(sceneRect(shown[j])))
                                found << QString::fromStdString(describe(shown[i]) + " overlaps " +
                                                                describe(shown[j]));
                    }
                }
                const QQuickItem* innerCard = isCard(item) ? item : card;
                const QQuickItem* innerScroller =
                    isA(item, "QQuickFlickable") && item->clip() ? item : scroller;
                for (QQuickItem* child : item->childItems())
                    walk(child, innerCard, innerScroller);
            };
        walk(window()->contentItem(), nullptr, nullptr);

        // The overview's cards pass under the action bar instead of ending above it.
        if (auto* page =
                qobject_cast<QQuickItem*>(WindowSearch::firstNamed(window(), QStringLiteral("overviewPage")));
            page && shows(page))
            if (sceneRect(page).bottom() < windowRect.bottom() - 1)
                found << QStringLiteral("the overview ends above the action bar");
        // The System Data rows of one card end their bars and sizes at one line.
        std::map<const QQuickItem*, std::set<std::pair<int, int>>> columnsByCard;
        for (QQuickItem* bar : bars) {
            auto* size = item(bar->objectName().replace("systemBar_", "systemSize_"));
            if (!size)
                continue;
            const QQuickItem* card = bar;
            while (card && !isCard(card))
                card = card->parentItem();
            const QRectF track = sceneRect(bar->parentItem());
            columnsByCard[card].insert({qRound(track.right()), qRound(sceneRect(size).right())});
        }
        for (const auto& [card, columns] : columnsByCard)
            if (columns.size() > 1)
                found << QStringLiteral("System Data rows of one card do not line up");

        // The row chosen in the sidebar is in sight.
        for (const QString& name : {QStringLiteral("overviewRow"), QStringLiteral("systemDataRow")}) {
            QQuickItem* row = item(name);
            QQuickItem* list = item(QStringLiteral("sidebarList"));
            if (row && list && row->property("selected").toBool() && !inside(sceneRect(row), sceneRect(list)))
                found << name + " is chosen but out of sight";
        }
        return found;
    }

    void showScreen(const QString& screen) {
        const int split = screen.indexOf(':');
        navigate(split < 0 ? screen : QStringLiteral("category"),
                 split < 0 ? QString() : screen.mid(split + 1));
        const QString view = screen == "overview"     ? QStringLiteral("overviewView")
                             : screen == "systemData" ? QStringLiteral("systemDataView")
                                                      : QStringLiteral("categoryDetailView");
        ASSERT_TRUE(UiHarness::waitFor([&] { return window()->findChild<QQuickItem*>(view) != nullptr; }));
        ASSERT_TRUE(settledAll());
    }
};

TEST_F(WindowGeometry, EveryScreenFitsEverySize) {
    // Large files in one folder, so that their screen shows it in the header.
    home().makeFileOfSize("Library/Caches/com.example.a-rather-long-bundle-name.helper/blob.bin", 900'000);
    home().makeFileOfSize("Projects/big/disk-image.iso", 3'000'000);
    home().makeFileOfSize("Projects/big/second-image.iso", 2'200'000);
    model().setLargeThresholdGB(0.001);
    ASSERT_TRUE(scanToEnd());

    const QStringList screens{"overview", "systemData", "category:user.caches", "category:large.files"};
    struct Variant {
        const char* name;
        bool searchFolder;
        bool checked;
    };
    const Variant variants[] = {{"plain", false, false}, {"with a search folder and checks", true, true}};
    const QSize sizes[] = {{1180, 760}, {960, 600}, {1180, 760}, {1400, 900}};

    for (const Variant& variant : variants) {
        if (variant.searchFolder) {
            home().makeDir("Projects/a folder with a long name");
            model().addRoots({home().path("Projects/a folder with a long name")});
            ASSERT_TRUE(scanToEnd());
        }
        if (variant.checked) {
            model().setAll(QStringLiteral("user.caches"), true);
            model().setAll(QStringLiteral("large.files"), true);
        }
        std::map<QString, Places> fresh;
        for (const QSize& size : sizes) {
            resize(size.width(), size.height());
            for (const QString& screen : screens) {
                showScreen(screen);
                const QString where = QStringLiteral("%1 at %2×%3, %4")
                                          .arg(screen)
                                          .arg(size.width())
                                          .arg(size.height())
                                          .arg(variant.name);
                const QStringList found = faults();
                EXPECT_TRUE(found.isEmpty()) << where.toStdString() << ":\n"
                                             << found.join('\n').toStdString();
                // Back at a size seen before, after a smaller one: the same picture.
                const QString key = screen + QString::number(size.width());
                if (fresh.count(key)) {
                    const Places now = places();
                    for (const auto& [name, rect] : fresh[key])
                        if (now.count(name) && now.at(name) != rect)
                            ADD_FAILURE() << where.toStdString() << ": " << name.toStdString()
                                          << " moved after resizing";
                } else {
                    fresh[key] = places();
                }
            }
        }
    }
}

namespace {

// WCAG contrast of `text` over `back`, each blended over `under`.
double contrast(QColor text, QColor back, const QColor& under) {
    auto blend = [](const QColor& top, const QColor& below) {
        const double a = top.alphaF();
        return QColor::fromRgbF(top.redF() * a + below.redF() * (1 - a),
                                top.greenF() * a + below.greenF() * (1 - a),
                                top.blueF() * a + below.blueF() * (1 - a));
    };
    auto luminance = [](const QColor& c) {
        auto channel = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
    };
    back = blend(back, under);
    text = blend(text, back);
    const double a = luminance(text) + 0.05, b = luminance(back) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

} // namespace

// The chosen row of a picker and the highlighted entry of a menu read in a light and a
// dark palette.
TEST_F(WindowGeometry, HighlightedChoicesReadInLightAndDark) {
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

        // A context menu's entry under the pointer.
        QObject* menu = find(QStringLiteral("categoryMenu"));
        QMetaObject::invokeMethod(find(QStringLiteral("sidebar")), "openCategoryMenu",
                                  Q_ARG(QVariant, QStringLiteral("user.caches")));
        ASSERT_TRUE(UiHarness::waitFor([&] { return menu->property("opened").toBool(); }));
        QObject* entry = find(QStringLiteral("menuSelectAllInCategory"));
        entry->setProperty("highlighted", true);
        EXPECT_GE(
            contrast(entry->property("foreground").value<QColor>(), colourOf(entry, "background"), window),
            3.0)
            << (dark ? "dark" : "light");
        QMetaObject::invokeMethod(menu, "close");
        ASSERT_TRUE(UiHarness::waitFor([&] { return !menu->property("visible").toBool(); }));
    }
    QGuiApplication::setPalette(original);
}
