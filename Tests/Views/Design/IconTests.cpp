#include "Kestrio/Views/Design/AppIconImages.h"
#include "Kestrio/Views/Design/IconCache.h"
#include "Kestrio/Views/Design/SymbolSet.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Views/Design/Stage.h"

#include <QtCore/QThread>
#include <atomic>
#include <fstream>
#include <future>
#include <mutex>
#include <vector>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

/// A host with a few icons as files, which counts what it is asked.
struct Icons {
    TemporaryFolder folder;
    std::mutex mutex;
    std::vector<std::string> asked;

    IconFile find() {
        return [this](const std::string& application, int) -> std::optional<fs::path> {
            const std::lock_guard guard(mutex);
            asked.push_back(application);
            for (const auto* ending : {".png", ".svg"})
                if (const auto file = folder.path() / (application + ending); fs::exists(file))
                    return file;
            return std::nullopt;
        };
    }
    void addPicture(const std::string& application, QSize size, const QColor& color) {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(color);
        ASSERT_TRUE(image.save(QString::fromStdString((folder.path() / (application + ".png")).string())));
    }
    void addText(const std::string& name, const std::string& text) { std::ofstream(folder.path() / name) << text; }
};

struct IconCacheTest : testing::Test {
    Icons icons;
    IconCache cache{icons.find()};
};

TEST_F(IconCacheTest, asksTheHostOnceForEachSize) {
    icons.addPicture("org.example.a", {48, 48}, Qt::red);
    for (int i = 0; i < 3; ++i) {
        const auto icon = cache.icon("org.example.a", {32, 32});
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->size(), QSize(32, 32));
        EXPECT_EQ(icon->pixelColor(16, 16), QColor(Qt::red));
    }
    EXPECT_EQ(icons.asked.size(), 1U);
    EXPECT_EQ(cache.icon("org.example.a", {64, 64})->size(), QSize(64, 64));
    EXPECT_EQ(icons.asked.size(), 2U);
}

TEST_F(IconCacheTest, doesNotLookAgainForWhatWasNotFound) {
    for (const int side : {16, 32, 16})
        EXPECT_EQ(cache.icon("org.example.none", {side, side}), std::nullopt);
    EXPECT_EQ(icons.asked.size(), 1U);
    icons.addPicture("org.example.none", {16, 16}, Qt::red);
    EXPECT_EQ(cache.icon("org.example.none", {16, 16}), std::nullopt);
}

TEST_F(IconCacheTest, takesAFileThatIsNoPictureForNone) {
    icons.addText("org.example.text.png", "no picture");
    icons.addText("org.example.text.svg", "no drawing");
    icons.addText("org.example.empty.svg", "");
    EXPECT_EQ(cache.icon("org.example.text", {16, 16}), std::nullopt);
    EXPECT_EQ(cache.icon("org.example.empty", {16, 16}), std::nullopt);
}

TEST_F(IconCacheTest, keepsTheShapeOfAPicture) {
    icons.addPicture("org.example.wide", {40, 20}, Qt::blue);
    const auto icon = cache.icon("org.example.wide", {32, 32});
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->pixelColor(16, 16), QColor(Qt::blue));
    EXPECT_EQ(icon->pixelColor(16, 2).alpha(), 0);
    EXPECT_EQ(icon->pixelColor(16, 29).alpha(), 0);
}

TEST_F(IconCacheTest, drawsADrawingAtTheSizeThatIsShown) {
    icons.addText("org.example.drawn.svg",
                  "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 10 10' width='10' height='10'>"
                  "<rect width='10' height='10' fill='#00ff00'/></svg>");
    const auto icon = cache.icon("org.example.drawn", {50, 50});
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->pixelColor(0, 0), QColor("#00ff00"));
    EXPECT_EQ(icon->pixelColor(49, 49), QColor("#00ff00"));
}

TEST_F(IconCacheTest, answersNothingForNoSize) {
    icons.addPicture("org.example.a", {48, 48}, Qt::red);
    EXPECT_EQ(cache.icon("org.example.a", {}), std::nullopt);
    EXPECT_TRUE(cache.icon("org.example.a", {16, 16}));
}

QImage delivered(QQuickImageResponse& response) {
    const std::unique_ptr<QQuickTextureFactory> factory(response.textureFactory());
    return factory->image();
}

TEST(AppIconImages, answerLaterAndFromAnotherThread) {
    std::atomic<QThread*> lookedUpOn = nullptr;
    std::promise<void> connected;
    std::unique_ptr<QQuickImageResponse> response; // outlives the thread that delivers to it
    AppIconImages images([&](const std::string&, int) -> std::optional<fs::path> {
        connected.get_future().wait();
        lookedUpOn = QThread::currentThread();
        return std::nullopt;
    });
    response.reset(images.requestImageResponse("org.example.none?color=ff8800", {24, 24}));
    bool isFinished = false;
    QObject here; // told on this thread, when the response has done with itself
    QObject::connect(
        response.get(), &QQuickImageResponse::finished, &here, [&] { isFinished = true; }, Qt::QueuedConnection);
    connected.set_value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return isFinished; }, 10'000));
    EXPECT_NE(lookedUpOn, QThread::currentThread());
    EXPECT_EQ(delivered(*response), SymbolSet::standard().image("app.dashed", QColor("#ff8800"), {24, 24}));
}

TEST(AppIconImages, canGoWhileLookUpsWait) {
    std::vector<std::unique_ptr<QQuickImageResponse>> responses;
    {
        AppIconImages images([](const std::string&, int) { return std::nullopt; });
        for (int i = 0; i < 50; ++i)
            responses.emplace_back(images.requestImageResponse(QString("org.example.%1").arg(i), {24, 24}));
    }
}

TEST(AppIconView, showsTheSymbolForAMissingIcon) {
    Stage stage;
    auto* const view = stage.show("AppIconView { bundleID: 'org.example.none'; size: 24 }");
    ASSERT_NE(view, nullptr);
    EXPECT_TRUE(stage.becomes([&] { return view->property("status").toInt() == 1; }));
    EXPECT_EQ(view->size(), QSizeF(24, 24));
    const auto tint = stage.value("Theme.textTertiary").value<QColor>();
    const auto picture = stage.picture();
    bool isDrawn = false;
    for (int x = 0; x < 24 && !isDrawn; ++x)
        for (int y = 0; y < 24 && !isDrawn; ++y)
            isDrawn = qAbs(picture.pixelColor(x, y).red() - tint.red()) < 40;
    EXPECT_TRUE(isDrawn);
}

TEST(AppIconView, asksForTheApplicationByItsVeryName) {
    for (const auto* name :
         {"org.mozilla.firefox", "My App", "jetbrains-idea", "/opt/Some Thing/run.desktop", "Größe", "a?b", "a&b=c"}) {
        Icons icons;
        Stage stage(icons.find());
        auto* const view = stage.show(QString("AppIconView { bundleID: '%1'; size: 24 }").arg(name));
        ASSERT_TRUE(stage.becomes([&] { return view->property("status").toInt() == 1; })) << name;
        const std::lock_guard guard(icons.mutex);
        EXPECT_EQ(icons.asked, std::vector<std::string>{name});
    }
}

TEST(SiteIconView, showsTheLetterOnItsColour) {
    Stage stage;
    stage.show(
        "SiteIconView { icon: ({kind: 'site', letter: 'G', color: {hue: 0.5, saturation: 0.55, brightness: 0.78}}) }");
    EXPECT_EQ(stage.texts(), QStringList{"G"});
    const auto ground = stage.value("color").value<QColor>();
    EXPECT_NEAR(ground.hsvHueF(), 0.5, 0.01);
    EXPECT_NEAR(ground.hsvSaturationF(), 0.55, 0.01);
    EXPECT_NEAR(ground.valueF(), 0.78, 0.01);
    EXPECT_EQ(ground.alpha(), 255);
}

TEST(SiteIconView, showsTheVideoSitesSymbolOnRed) {
    Stage stage;
    stage.show("SiteIconView { icon: ({kind: 'videoSite'}) }");
    EXPECT_TRUE(stage.texts().isEmpty());
    const auto ground = stage.value("color").value<QColor>();
    EXPECT_GT(ground.red(), 2 * ground.green());
    EXPECT_GT(ground.red(), 2 * ground.blue());
    EXPECT_EQ(stage.items("Symbol").size(), 1);
}

TEST(RowIcon, isWhatItsKindSays) {
    const struct {
        const char* icon;
        const char* type;
    } rows[] = {{"{kind: 'app', bundleID: 'a'}", "AppIconView"},
                {"{kind: 'symbol', symbol: 'folder.fill'}", "Symbol"},
                {"{kind: 'site', letter: 'A', color: {hue: 0, saturation: 0.5, brightness: 0.7}}", "SiteIconView"},
                {"{kind: 'videoSite'}", "SiteIconView"},
                {"{kind: 'thumbnail', videoID: 'x'}", "VideoThumbnail"}};
    for (const auto& row : rows) {
        Stage stage;
        ASSERT_NE(stage.show(QString("RowIcon { icon: (%1); size: 28 }").arg(row.icon)), nullptr);
        EXPECT_EQ(stage.items(row.type).size(), 1) << row.icon;
        EXPECT_EQ(stage.value("height").toDouble(), 28) << row.icon;
    }
    Stage stage;
    ASSERT_NE(stage.show("RowIcon { icon: undefined }"), nullptr);
}

} // namespace
} // namespace kestrio
