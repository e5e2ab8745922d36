// What the pages ask the network for: nothing, unless the person wants pictures of videos.
#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Window/OverviewModel.h"
#include "Kestrio/Views/Window/YouTubeModel.h"
#include "Tests/Views/Window/PageScreen.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QQmlNetworkAccessManagerFactory>

namespace kestrio {
namespace {

/// A network that writes down what it is asked for, and has nothing.
class RecordingNetwork : public QQmlNetworkAccessManagerFactory {
public:
    std::vector<QNetworkRequest> requests;

    QStringList addresses() const {
        QStringList all;
        for (const auto& request : requests)
            all << request.url().toString();
        return all;
    }

private:
    class Manager : public QNetworkAccessManager {
    public:
        Manager(RecordingNetwork& network, QObject* parent) : QNetworkAccessManager(parent), network_(network) {}

    protected:
        QNetworkReply* createRequest(Operation operation, const QNetworkRequest& request, QIODevice* body) override {
            EXPECT_EQ(operation, GetOperation);
            network_.requests.push_back(request);
            return QNetworkAccessManager::createRequest(operation, QNetworkRequest(QUrl("data:text/plain,nothing")),
                                                        body);
        }

    private:
        RecordingNetwork& network_;
    };

    QNetworkAccessManager* create(QObject* parent) override {
        return std::make_unique<Manager>(*this, parent).release();
    }
};

std::vector<ActivitySession> watched() {
    ReportBench bench;
    bench.add(9 * hour, 600, {.app = "Browser", .title = "Film", .url = "https://www.youtube.com/watch?v=abcdefghijk"})
        .add(10 * hour, 60, {.app = "Browser", .title = "Clip", .url = "https://www.youtube.com/shorts/-_345678901"});
    return bench.sessions;
}

template <class Model>
struct NetworkedScreen {
    explicit NetworkedScreen(const char* page) : screen(page, noHistory) {
        screen.engine().setNetworkAccessManagerFactory(&network);
        screen.relive(watched());
    }
    void want(bool areWanted) {
        screen.settings.set(settingKey::showYouTubeThumbnails, areWanted);
        screen.settle();
    }

    RecordingNetwork network; // outlives the engine
    PageScreen<Model> screen;
};

const QStringList bothPictures{"https://i.ytimg.com/vi/abcdefghijk/mqdefault.jpg",
                               "https://i.ytimg.com/vi/-_345678901/mqdefault.jpg"};

TEST(PictureRequests, areMadeOnceAndOnlyWhenWanted) {
    NetworkedScreen<YouTubeModel> stage("YouTube");
    stage.screen.settle();
    EXPECT_EQ(stage.network.addresses(), QStringList());
    stage.want(true);
    EXPECT_EQ(stage.network.addresses(), bothPictures);
    stage.screen.relive(watched());
    EXPECT_EQ(stage.network.requests.size(), 2u) << "a fresh report asks for nothing anew";
    stage.want(false);
    stage.screen.relive(watched());
    EXPECT_EQ(stage.network.requests.size(), 2u);
    // None came: the places of both are held by their symbols.
    const auto symbols = stage.screen.items([](QQuickItem& item) { return item.property("name") == "play.fill"; });
    EXPECT_EQ(symbols.size(), 2u);
}

TEST(PictureRequests, areMadeForTheOverviewAlike) {
    NetworkedScreen<OverviewModel> stage("Overview");
    EXPECT_EQ(stage.network.addresses(), QStringList());
    stage.want(true);
    EXPECT_EQ(stage.network.addresses(), bothPictures);
}

TEST(PictureRequests, tellNobodyElse) {
    NetworkedScreen<YouTubeModel> stage("YouTube");
    stage.want(true);
    ASSERT_FALSE(stage.network.requests.empty());
    const auto& request = stage.network.requests.front();
    EXPECT_EQ(request.attribute(QNetworkRequest::RedirectPolicyAttribute), QNetworkRequest::SameOriginRedirectPolicy);
    EXPECT_EQ(request.attribute(QNetworkRequest::CookieLoadControlAttribute), QNetworkRequest::Manual);
    EXPECT_EQ(request.attribute(QNetworkRequest::CookieSaveControlAttribute), QNetworkRequest::Manual);
    EXPECT_TRUE(request.rawHeaderList().isEmpty());
}

} // namespace
} // namespace kestrio
