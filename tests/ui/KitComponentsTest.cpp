// The kit's components as a person sees them, observed through their objects: tile
// layers, the pill's leading gap, the reveal pop, the motion effects with and without
// reduce motion, the footer's link, the theme's tokens and the ambient backdrop's
// corner colours.

#include "UiHarness.h"

#include "catalogue/CategoryGroup.h"

#include <QColor>
#include <QElapsedTimer>
#include <QImage>
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

namespace {

double opacityOf(QObject* object) {
    return object->property("opacity").toDouble();
}

// Reference OKLab mixing, written independently of the QML.
struct Lab {
    double l, a, b;
};

double linear(double v) {
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}
double gamma(double v) {
    v = std::clamp(v, 0.0, 1.0);
    return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

Lab toLab(const QColor& c) {
    const double r = linear(c.redF()), g = linear(c.greenF()), b = linear(c.blueF());
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

QColor fromLab(const Lab& lab) {
    const double l = std::pow(lab.l + 0.3963377774 * lab.a + 0.2158037573 * lab.b, 3);
    const double m = std::pow(lab.l - 0.1055613458 * lab.a - 0.0638541728 * lab.b, 3);
    const double s = std::pow(lab.l - 0.0894841775 * lab.a - 1.2914855480 * lab.b, 3);
    return QColor::fromRgbF(float(gamma(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s)),
                            float(gamma(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s)),
                            float(gamma(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)));
}

QColor mixed(const QColor& colour, const QColor& base, double baseShare) {
    const Lab a = toLab(colour), b = toLab(base);
    const double t = baseShare;
    return fromLab({a.l * (1 - t) + b.l * t, a.a * (1 - t) + b.a * t, a.b * (1 - t) + b.b * t});
}

bool similar(const QColor& a, const QColor& b, int tolerance = 3) {
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

std::string hex(const QColor& c) {
    return c.name().toStdString();
}

class Kit : public QmlTest {};

} // namespace

TEST_F(Kit, InactiveIconTileKeepsItsBaseAndDimsItsSymbol) {
    ReduceMotionScope motion(false);
    ASSERT_NE(loadInWindow(
                  "IconTile { objectName: 'tile'; symbol: 'trash'; tint: 'red'; size: 40; active: false }"),
              nullptr);
    QObject* base = find(QStringLiteral("iconTileBase"));
    QObject* tint = find(QStringLiteral("iconTileTint"));
    QObject* shadow = find(QStringLiteral("iconTileShadow"));
    QObject* symbol = find(QStringLiteral("iconTileSymbol"));
    ASSERT_TRUE(base && tint && shadow && symbol);
    EXPECT_TRUE(base->property("visible").toBool());
    EXPECT_DOUBLE_EQ(opacityOf(base), 0.45);
    EXPECT_DOUBLE_EQ(opacityOf(tint), 0.0);
    EXPECT_FALSE(tint->property("visible").toBool());
    EXPECT_DOUBLE_EQ(opacityOf(shadow), 0.0);
    EXPECT_FALSE(shadow->property("visible").toBool());
    EXPECT_DOUBLE_EQ(opacityOf(symbol), 0.75);
    EXPECT_DOUBLE_EQ(find<QQuickItem>(QStringLiteral("tile"))->property("cornerRadius").toDouble(),
                     40 * 0.26);
    EXPECT_DOUBLE_EQ(symbol->property("size").toDouble(), 40 * 0.52);

    // Turning it on fades the tint in over 0.45 s, through values between.
    int between = 0;
    QObject::connect(find<QQuickItem>(QStringLiteral("iconTileTint")), &QQuickItem::opacityChanged, tint,
                     [&] { between += opacityOf(tint) > 0.0 && opacityOf(tint) < 1.0; });
    QElapsedTimer timer;
    timer.start();
    find(QStringLiteral("tile"))->setProperty("active", true);
    ASSERT_TRUE(UiHarness::waitFor([&] { return opacityOf(tint) == 1.0; }, 3000));
    EXPECT_GE(timer.elapsed(), 400);
    EXPECT_GE(between, 1);
    ASSERT_TRUE(UiHarness::waitFor([&] { return opacityOf(shadow) == 0.3 && opacityOf(symbol) == 1.0; }));
    EXPECT_DOUBLE_EQ(opacityOf(base), 0.45);

    // With reduce motion the change is immediate.
    ReduceMotionScope still(true);
    find(QStringLiteral("tile"))->setProperty("active", false);
    UiHarness::spin(50);
    EXPECT_DOUBLE_EQ(opacityOf(tint), 0.0);
    EXPECT_DOUBLE_EQ(opacityOf(symbol), 0.75);
    EXPECT_DOUBLE_EQ(find<QQuickItem>(QStringLiteral("tile"))->scale(), 1.0);
}

TEST_F(Kit, PillWithoutSymbolHasNoLeadingGap) {
    ASSERT_NE(
        loadInWindow(
            "Column {\n"
            "  Pill { objectName: 'plain'; text: 'Safe'; color: 'green' }\n"
            "  Pill { objectName: 'withSymbol'; text: 'Safe'; color: 'green'; systemImage: 'lock.fill' }\n"
            "}"),
        nullptr);
    auto* plain = find<QQuickItem>(QStringLiteral("plain"));
    auto* withSymbol = find<QQuickItem>(QStringLiteral("withSymbol"));
    ASSERT_TRUE(plain && withSymbol);
    auto* plainSymbol = plain->findChild<QQuickItem*>(QStringLiteral("pillSymbol"));
    auto* plainText = plain->findChild<QQuickItem*>(QStringLiteral("pillText"));
    auto* symbol = withSymbol->findChild<QQuickItem*>(QStringLiteral("pillSymbol"));
    auto* text = withSymbol->findChild<QQuickItem*>(QStringLiteral("pillText"));
    ASSERT_TRUE(plainSymbol && plainText && symbol && text);

    EXPECT_FALSE(plainSymbol->isVisible());
    EXPECT_DOUBLE_EQ(plainText->x(), 0.0);
    // The text alone, padded 8 on each side.
    EXPECT_DOUBLE_EQ(plain->implicitWidth(), plainText->implicitWidth() + 16);
    EXPECT_DOUBLE_EQ(plainText->mapToItem(plain, QPointF(0, 0)).x(), 8.0);

    EXPECT_TRUE(symbol->isVisible());
    EXPECT_DOUBLE_EQ(text->x(), symbol->width() + 4);
    EXPECT_GT(withSymbol->implicitWidth(), plain->implicitWidth() + symbol->width());
}

TEST_F(Kit, RevealPopPlaysOnlyOnChangesEitherWay) {
    ReduceMotionScope motion(false);
    ASSERT_NE(loadInWindow("Rectangle {\n"
                           "  id: box; objectName: 'box'; width: 40; height: 40\n"
                           "  property bool on: true\n"
                           "  RevealPop { target: box; trigger: box.on }\n"
                           "}"),
              nullptr);
    auto* box = find<QQuickItem>(QStringLiteral("box"));
    ASSERT_NE(box, nullptr);
    double largest = 1.0;
    QObject::connect(box, &QQuickItem::scaleChanged, box, [&] { largest = std::max(largest, box->scale()); });

    // First display: nothing.
    UiHarness::spin(500);
    EXPECT_DOUBLE_EQ(largest, 1.0);
    EXPECT_DOUBLE_EQ(box->scale(), 1.0);

    for (bool value : {false, true}) {
        largest = 1.0;
        box->setProperty("on", value);
        ASSERT_TRUE(UiHarness::waitFor([&] { return largest > 1.17; }, 2000)) << "largest " << largest;
        EXPECT_LT(largest, 1.181);
        ASSERT_TRUE(UiHarness::waitFor([&] { return box->scale() == 1.0; }, 2000));
    }

    // With reduce motion a change leaves the scale alone.
    ReduceMotionScope still(true);
    largest = 1.0;
    box->setProperty("on", false);
    UiHarness::spin(400);
    EXPECT_DOUBLE_EQ(largest, 1.0);
    EXPECT_DOUBLE_EQ(box->scale(), 1.0);
}

TEST_F(Kit, ShimmerSweepsOnlyWhileActiveWithMotion) {
    ReduceMotionScope motion(false);
    ASSERT_NE(loadInWindow("Rectangle {\n"
                           "  width: 200; height: 30; color: 'gray'\n"
                           "  Shimmer { objectName: 'shimmer'; active: true }\n"
                           "}"),
              nullptr);
    QObject* shimmer = find(QStringLiteral("shimmer"));
    auto* band = find<QQuickItem>(QStringLiteral("shimmerBand"));
    ASSERT_TRUE(shimmer && band);
    EXPECT_DOUBLE_EQ(band->width(), 100.0);
    EXPECT_FALSE(shimmer->property("enabled").toBool()) << "never takes the mouse";

    // The band moves across: x follows phase × width × 1.25 + width × 0.25.
    ASSERT_TRUE(UiHarness::waitFor([&] { return shimmer->property("visible").toBool(); }));
    const double phase = shimmer->property("phase").toDouble();
    EXPECT_NEAR(band->x(), phase * 200 * 1.25 + 50, 1e-6);
    ASSERT_TRUE(
        UiHarness::waitFor([&] { return std::abs(shimmer->property("phase").toDouble() - phase) > 0.1; }));

    // Inactive: it fades out and draws nothing.
    shimmer->setProperty("active", false);
    ASSERT_TRUE(UiHarness::waitFor([&] { return !shimmer->property("visible").toBool(); }));

    // Active again but with reduce motion: nothing drawn, nothing moving.
    ReduceMotionScope still(true);
    shimmer->setProperty("active", true);
    UiHarness::spin(200);
    EXPECT_FALSE(shimmer->property("visible").toBool());
    EXPECT_DOUBLE_EQ(opacityOf(shimmer), 0.0);
    EXPECT_DOUBLE_EQ(shimmer->property("phase").toDouble(), -1.0);
}

TEST_F(Kit, ScanSweepTurnsUnlessMotionIsReduced) {
    ReduceMotionScope motion(false);
    ASSERT_NE(loadInWindow("ScanSweep { objectName: 'sweep'; width: 120; height: 120; lineWidth: 26 }"),
              nullptr);
    auto* ring = find<QQuickItem>(QStringLiteral("scanSweepRing"));
    ASSERT_NE(ring, nullptr);
    const double start = ring->rotation();
    ASSERT_TRUE(UiHarness::waitFor([&] { return std::abs(ring->rotation() - start) > 20; }));

    ReduceMotionScope still(true);
    ASSERT_TRUE(
        UiHarness::waitFor([&] { return !find(QStringLiteral("sweep"))->property("spinning").toBool(); }));
    const double stopped = ring->rotation();
    UiHarness::spin(300);
    EXPECT_DOUBLE_EQ(ring->rotation(), stopped);
    EXPECT_DOUBLE_EQ(stopped, 0.0);
}

TEST_F(Kit, ScanSweepFadesInFromThreeOClockClockwise) {
    ReduceMotionScope still(true);
    ASSERT_NE(loadInWindow("Rectangle { color: 'black'; anchors.fill: parent\n"
                           "  ScanSweep { width: 200; height: 200; lineWidth: 26 } }",
                           200, 200),
              nullptr);
    ASSERT_TRUE(UiHarness::waitFor([&] { return window()->isExposed(); }));
    const QImage image = window()->grabWindow();
    ASSERT_FALSE(image.isNull());
    // On the ring's middle line (radius 87), by angle clockwise from three o'clock.
    auto brightness = [&](double degrees) {
        const double r = 87, a = degrees * M_PI / 180;
        const QColor c = image.pixelColor(int(std::lround(100 + r * std::cos(a))),
                                          int(std::lround(100 + r * std::sin(a))));
        return c.red();
    };
    EXPECT_LT(brightness(3), 30);
    EXPECT_NEAR(brightness(78), 0.85 * 255, 20);
    EXPECT_GT(brightness(60), brightness(30));
    EXPECT_LT(brightness(180), 10);
    EXPECT_LT(brightness(300), 10);
    // Nothing inside the ring.
    EXPECT_EQ(image.pixelColor(100, 100).red(), 0);
}

TEST_F(Kit, SupportFooterOpensTheDonationSection) {
    UrlRecorder opened;
    ASSERT_NE(loadInWindow("SupportFooter { x: 10; y: 10; width: 260 }"), nullptr);
    auto* footer = find<QQuickItem>(QStringLiteral("supportFooter"));
    ASSERT_NE(footer, nullptr);
    EXPECT_DOUBLE_EQ(footer->property("leftPadding").toDouble(), 12.0);
    EXPECT_DOUBLE_EQ(footer->property("topPadding").toDouble(), 9.0);
    EXPECT_EQ(footer->property("helpText").toString(), "Opens veltro.app in your browser");
    // Anywhere on the row counts, the right end included.
    QTest::mouseClick(window(), Qt::LeftButton, {},
                      footer->mapToScene(QPointF(footer->width() - 4, footer->height() / 2)).toPoint());
    ASSERT_TRUE(UiHarness::waitFor([&] { return opened.urls().size() == 1; }));
    EXPECT_EQ(opened.urls().first(), QUrl(QStringLiteral("https://veltro.app/#coffee")));
    EXPECT_NE(opened.urls().first(), QUrl(QStringLiteral("https://veltro.app")));
}

// The group tints are the catalogue's.
TEST_F(Kit, ThemeGroupTintsAreTheCatalogues) {
    ASSERT_NE(loadInWindow("Item {\n"
                           "  objectName: 'probe'\n"
                           "  property var tints: ['user', 'system', 'developer', 'apps', 'large']"
                           ".map(g => Theme.groupTint(g))\n"
                           "}"),
              nullptr);
    const QVariantList tints = find(QStringLiteral("probe"))->property("tints").toList();
    ASSERT_EQ(tints.size(), 5);
    for (int i = 0; i < 5; ++i) {
        const Rgb expected = CategoryGroups::tint(CategoryGroups::allCases()[size_t(i)]);
        const QColor actual = tints[i].value<QColor>();
        EXPECT_NEAR(actual.redF(), expected.red, 1e-3) << i;
        EXPECT_NEAR(actual.greenF(), expected.green, 1e-3) << i;
        EXPECT_NEAR(actual.blueF(), expected.blue, 1e-3) << i;
    }
}

TEST_F(Kit, AmbientBackgroundHasTheTintedCornersAndAPlainCentre) {
    const int w = 300, h = 200;
    ASSERT_NE(loadInWindow(
                  "AmbientBackground { objectName: 'ambient'; anchors.fill: parent; tint: '#ff0000' }", w, h),
              nullptr);
    QObject* ambient = find(QStringLiteral("ambient"));
    ASSERT_NE(ambient, nullptr);
    const bool dark = ambient->property("dark").toBool();
    const double level = dark ? 0.105 : 0.965;
    const QColor base = QColor::fromRgbF(float(level), float(level), float(level));
    const QColor red(255, 0, 0);
    const QColor expectedTopLeft = mixed(red, base, dark ? 0.72 : 0.8);
    const QColor expectedTopRight = mixed(QColor(219, 182, 119), base, dark ? 0.86 : 0.88);
    const QColor expectedBottomLeft = mixed(QColor(91, 114, 214), base, dark ? 0.85 : 0.9);
    const QColor expectedBottomRight = mixed(red, base, dark ? 0.85 : 0.9);

    EXPECT_PRED3(similar, ambient->property("topLeft").value<QColor>(), expectedTopLeft, 1);
    EXPECT_PRED3(similar, ambient->property("topRight").value<QColor>(), expectedTopRight, 1);
    EXPECT_PRED3(similar, ambient->property("bottomLeft").value<QColor>(), expectedBottomLeft, 1);
    EXPECT_PRED3(similar, ambient->property("bottomRight").value<QColor>(), expectedBottomRight, 1);

    const QImage image = window()->grabWindow();
    ASSERT_EQ(image.size(), QSize(w, h) * window()->devicePixelRatio());
    auto at = [&](double u, double v) {
        return image.pixelColor(std::min(int(u * w), w - 1), std::min(int(v * h), h - 1));
    };
    EXPECT_PRED3(similar, at(0, 0), expectedTopLeft, 4) << hex(at(0, 0)) << " vs " << hex(expectedTopLeft);
    EXPECT_PRED3(similar, at(1, 0), expectedTopRight, 4) << hex(at(1, 0));
    EXPECT_PRED3(similar, at(0, 1), expectedBottomLeft, 4) << hex(at(0, 1));
    EXPECT_PRED3(similar, at(1, 1), expectedBottomRight, 4) << hex(at(1, 1));
    // The other five mesh points are the plain base.
    for (const auto& [u, v] : {std::pair{0.5, 0.0}, {0.0, 0.5}, {0.55, 0.45}, {1.0, 0.5}, {0.5, 1.0}})
        EXPECT_PRED3(similar, at(u, v), base, 3) << u << "," << v << ": " << hex(at(u, v));
}

TEST_F(Kit, NumericTextCrossFadesUnlessMotionIsReduced) {
    for (const bool reduce : {false, true}) {
        ReduceMotionScope motion(reduce);
        ASSERT_NE(loadInWindow("NumericText { objectName: 'number'; text: '1 GB' }"), nullptr);
        QObject* number = find(QStringLiteral("number"));
        auto* previous = find<QQuickItem>(QStringLiteral("previousText"));
        ASSERT_TRUE(number && previous);
        double oldShown = 0;
        QObject::connect(previous, &QQuickItem::opacityChanged, previous,
                         [&] { oldShown = std::max(oldShown, previous->opacity()); });
        number->setProperty("text", QStringLiteral("2 GB"));
        ASSERT_TRUE(UiHarness::waitFor([&] { return previous->opacity() == 0.0; }));
        EXPECT_EQ(previous->property("text").toString(), reduce ? "" : "1 GB");
        EXPECT_EQ(oldShown > 0, !reduce) << "the old text shows while the new one fades in";
    }
}
