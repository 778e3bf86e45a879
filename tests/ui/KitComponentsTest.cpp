// The kit's components as a person sees them, observed through their objects: the
// motion effects with and without reduce motion, the pill's leading gap, the scan
// sweep's drawing, the footer's link and the ambient backdrop's corner colours.

#include "UiHarness.h"

#include <QColor>
#include <QImage>
#include <QQmlProperty>
#include <QQuickItem>
#include <QTest>

#include <cmath>

namespace {

// Every value a property takes, as it takes it (an animation's steps included).
class Recorder : public QObject {
    Q_OBJECT
public:
    Recorder(QObject* watched, const char* name) : property_(watched, QString::fromLatin1(name)) {
        property_.connectNotifySignal(this, SLOT(note()));
    }
    double now() const { return property_.read().toDouble(); }
    QList<double> values;

public slots:
    void note() { values << now(); }

private:
    QQmlProperty property_;
};

class Kit : public QmlTest {};

} // namespace

// Each effect moves while motion is allowed and, with reduce motion, takes its end
// state at once and stays there. Nothing moves before its trigger.
TEST_F(Kit, EffectsMoveOnlyWithoutReduceMotion) {
    struct Effect {
        const char* what;
        const char* qml;
        const char* watched; // the object whose property moves, and the property
        const char* property;
        const char* trigger; // set on 'subject' to start the effect; none: it runs by itself
        QVariant to;
        double still;      // the watched value with reduce motion
        bool quietAtFirst; // still until triggered (a number fades its empty old text in at first)
    };
    const char* pop =
        "Rectangle { id: box; objectName: 'subject'; width: 40; height: 40; property bool on: %1\n"
        "  RevealPop { target: box; trigger: box.on } }";
    const QByteArray popOn = QByteArray(pop).replace("%1", "false"),
                     popOff = QByteArray(pop).replace("%1", "true");
    const Effect effects[] = {
        {"a tile fades its tint in", "IconTile { objectName: 'subject'; symbol: 'trash'; active: false }",
         "iconTileTint", "opacity", "active", true, 1.0, true},
        {"a tile fades its tint out", "IconTile { objectName: 'subject'; symbol: 'trash'; active: true }",
         "iconTileTint", "opacity", "active", false, 0.0, true},
        {"a reveal pops when its trigger goes off", popOff.constData(), "subject", "scale", "on", false, 1.0,
         true},
        {"a reveal pops when its trigger goes on", popOn.constData(), "subject", "scale", "on", true, 1.0,
         true},
        {"a shimmer sweeps",
         "Rectangle { width: 200; height: 30; Shimmer { objectName: 'subject'; active: false } }", "subject",
         "phase", "active", true, -1.0, true},
        {"the scan sweep turns", "ScanSweep { width: 120; height: 120; lineWidth: 26 }", "scanSweepRing",
         "rotation", nullptr, QVariant(), 0.0, false},
        {"a number cross-fades", "NumericText { objectName: 'subject'; text: '1 GB' }", "previousText",
         "opacity", "text", QStringLiteral("2 GB"), 0.0, false},
    };
    for (const Effect& effect : effects) {
        for (const bool reduce : {false, true}) {
            SCOPED_TRACE(std::string(effect.what) + (reduce ? ", reduce motion" : ""));
            ReduceMotionScope motion(reduce);
            ASSERT_NE(loadInWindow(effect.qml), nullptr);
            QObject* watched = find(QString::fromLatin1(effect.watched));
            ASSERT_NE(watched, nullptr);
            Recorder recorder(watched, effect.property);
            if (effect.trigger) {
                ASSERT_TRUE(UiHarness::waitForFrames(window()));
                EXPECT_TRUE(recorder.values.isEmpty() || !effect.quietAtFirst) << "moved before its trigger";
                recorder.values.clear();
            }
            const double start = recorder.now();
            if (effect.trigger)
                find("subject")->setProperty(effect.trigger, effect.to);
            if (reduce) {
                EXPECT_EQ(recorder.now(), effect.still);
                ASSERT_TRUE(UiHarness::waitForFrames(window()));
                EXPECT_EQ(recorder.now(), effect.still);
                EXPECT_LE(recorder.values.size(), 1) << "it stepped instead of jumping";
            } else {
                EXPECT_TRUE(UiHarness::waitFor([&] {
                    return std::any_of(recorder.values.begin(), recorder.values.end(),
                                       [&](double v) { return v != start && v != effect.still; });
                })) << "it never passed between its start and its end";
            }
        }
    }
}

TEST_F(Kit, PillWithoutSymbolHasNoLeadingGap) {
    ASSERT_NE(loadInWindow("Column {\n"
                           "  Pill { objectName: 'plain'; text: 'Safe' }\n"
                           "  Pill { objectName: 'withSymbol'; text: 'Safe'; systemImage: 'lock.fill' }\n"
                           "}"),
              nullptr);
    auto* plain = find<QQuickItem>(QStringLiteral("plain"));
    auto* withSymbol = find<QQuickItem>(QStringLiteral("withSymbol"));
    ASSERT_TRUE(plain && withSymbol);
    auto* plainText = plain->findChild<QQuickItem*>(QStringLiteral("pillText"));
    auto* symbol = withSymbol->findChild<QQuickItem*>(QStringLiteral("pillSymbol"));
    ASSERT_TRUE(plainText && symbol);
    // The text alone, padded equally on both sides.
    EXPECT_DOUBLE_EQ(plainText->mapToItem(plain, QPointF(0, 0)).x() * 2 + plainText->implicitWidth(),
                     plain->implicitWidth());
    EXPECT_TRUE(symbol->isVisible());
    EXPECT_GT(withSymbol->implicitWidth(), plain->implicitWidth() + symbol->width());
}

TEST_F(Kit, ScanSweepFadesInFromThreeOClockClockwise) {
    ReduceMotionScope still(true);
    ASSERT_NE(loadInWindow("Rectangle { color: 'black'; anchors.fill: parent\n"
                           "  ScanSweep { width: 200; height: 200; lineWidth: 26 } }",
                           200, 200),
              nullptr);
    const QImage image = window()->grabWindow();
    // On the ring's middle line (radius 87), by angle clockwise from three o'clock.
    auto brightness = [&](double degrees) {
        const double r = 87, a = degrees * M_PI / 180;
        return image
            .pixelColor(int(std::lround(100 + r * std::cos(a))), int(std::lround(100 + r * std::sin(a))))
            .red();
    };
    EXPECT_LT(brightness(3), 30);
    EXPECT_GT(brightness(60), brightness(30));
    EXPECT_GT(brightness(78), 150);
    EXPECT_LT(brightness(180), 10);
    EXPECT_EQ(image.pixelColor(100, 100).red(), 0) << "nothing inside the ring";
}

TEST_F(Kit, SupportFooterOpensTheDonationSectionFromAnywhereOnItsRow) {
    UrlRecorder opened;
    ASSERT_NE(loadInWindow("SupportFooter { x: 10; y: 10; width: 260 }"), nullptr);
    auto* footer = find<QQuickItem>(QStringLiteral("supportFooter"));
    ASSERT_NE(footer, nullptr);
    QTest::mouseClick(window(), Qt::LeftButton, {},
                      footer->mapToScene(QPointF(footer->width() - 4, footer->height() / 2)).toPoint());
    ASSERT_TRUE(UiHarness::waitFor([&] { return opened.urls().size() == 1; }));
    EXPECT_EQ(opened.urls().first(), QUrl(QStringLiteral("https://veltro.app/#coffee")));
}

// The corners are drawn in their own colours, tinted away from the base, and the
// edge midpoints and the centre are the plain base.
TEST_F(Kit, AmbientBackgroundHasTheTintedCornersAndAPlainCentre) {
    const int w = 300, h = 200;
    ASSERT_NE(loadInWindow(
                  "AmbientBackground { objectName: 'ambient'; anchors.fill: parent; tint: '#ff0000' }", w, h),
              nullptr);
    QObject* ambient = find(QStringLiteral("ambient"));
    ASSERT_NE(ambient, nullptr);
    const QColor base = ambient->property("base").value<QColor>();
    const QImage image = window()->grabWindow();
    ASSERT_EQ(image.size(), QSize(w, h) * window()->devicePixelRatio());
    auto at = [&](double u, double v) {
        return image.pixelColor(std::min(int(u * w), w - 1), std::min(int(v * h), h - 1));
    };
    for (const auto& [u, v, corner] : {std::tuple{0.0, 0.0, "topLeft"},
                                       {1.0, 0.0, "topRight"},
                                       {0.0, 1.0, "bottomLeft"},
                                       {1.0, 1.0, "bottomRight"}}) {
        const QColor expected = ambient->property(corner).value<QColor>();
        EXPECT_PRED3(UiHarness::similar, at(u, v), expected, 4)
            << corner << ": " << at(u, v).name().toStdString();
        EXPECT_FALSE(UiHarness::similar(expected, base, 4)) << corner << " is not tinted";
    }
    EXPECT_GT(at(0, 0).red(), at(0, 0).blue()) << "the tint at the top left";
    EXPECT_GT(at(0, 1).blue(), at(0, 1).red()) << "navy at the bottom left";
    for (const auto& [u, v] : {std::pair{0.5, 0.0}, {0.0, 0.5}, {0.55, 0.45}, {1.0, 0.5}, {0.5, 1.0}})
        EXPECT_PRED3(UiHarness::similar, at(u, v), base, 3)
            << u << "," << v << ": " << at(u, v).name().toStdString();
}

#include "KitComponentsTest.moc"
