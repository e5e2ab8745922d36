// Pictures of videos, fetched from a server of the test's own that counts what it is asked.
#include "Tests/Views/Design/Stage.h"

#include <QtCore/QBuffer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

namespace kestrio {
namespace {

class PictureServer {
public:
    enum class Answer { picture, nothing, garbage, notFound, tooLarge };

    explicit PictureServer(Answer answer = Answer::picture) : answer_(answer) {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, [this] { serve(server_.nextPendingConnection()); });
    }

    QString address() const { return QString("http://127.0.0.1:%1/vi/abc/mqdefault.jpg").arg(server_.serverPort()); }
    const QStringList& requests() const { return requests_; }

private:
    void serve(QTcpSocket* socket) {
        socket->setParent(&server_);
        QObject::connect(socket, &QTcpSocket::readyRead, [this, socket] {
            requests_.append(QString::fromLatin1(socket->readAll()).section(' ', 1, 1));
            if (answer_ == Answer::nothing)
                return;
            const auto body = this->body();
            socket->write(QByteArray("HTTP/1.1 ") + (answer_ == Answer::notFound ? "404 Not Found" : "200 OK") +
                          "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" +
                          body);
            socket->disconnectFromHost();
        });
    }
    QByteArray body() const {
        if (answer_ == Answer::tooLarge)
            return QByteArray(4 * 1024 * 1024, 'x');
        if (answer_ != Answer::picture)
            return "no picture";
        QImage image(320, 180, QImage::Format_RGB32);
        image.fill(QColor("#00c000"));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        image.save(&buffer, "PNG");
        return bytes;
    }

    const Answer answer_;
    QTcpServer server_;
    QStringList requests_;
};

QString thumbnail(const QString& url) {
    return QString("VideoThumbnail { width: 160; height: implicitHeight; value: ({videoID: 'abc'%1}) }")
        .arg(url.isEmpty() ? QString() : ", url: '" + url + "'");
}

bool showsPlaceholder(Stage& stage) {
    const auto symbols = stage.items("Symbol");
    return symbols.size() == 1 && symbols[0]->property("name").toString() == "play.fill";
}

TEST(VideoThumbnail, asksForNothingUnlessItIsWanted) {
    PictureServer server;
    Stage stage;
    stage.show(thumbnail({}));
    EXPECT_TRUE(showsPlaceholder(stage));
    // Long enough for the wanted one beside it to have asked and been answered.
    Stage wanted;
    auto* const other = wanted.show(thumbnail(server.address()));
    EXPECT_TRUE(wanted.becomes([&] { return other->property("isLoaded").toBool(); }));
    EXPECT_EQ(server.requests(), QStringList{"/vi/abc/mqdefault.jpg"});
}

TEST(VideoThumbnail, showsThePictureOnceItIsThere) {
    PictureServer server;
    Stage stage;
    auto* const item = stage.show(thumbnail(server.address()));
    EXPECT_TRUE(showsPlaceholder(stage));
    ASSERT_TRUE(stage.becomes([&] { return item->property("isLoaded").toBool(); }));
    EXPECT_TRUE(stage.items("Symbol").isEmpty());
    const auto picture = stage.picture();
    const auto ratio = picture.devicePixelRatio();
    EXPECT_EQ(picture.pixelColor(static_cast<int>(80 * ratio), static_cast<int>(45 * ratio)), QColor("#00c000"));
    EXPECT_NE(picture.pixelColor(0, 0), QColor("#00c000")) << "the corner is not round";
}

TEST(VideoThumbnail, isSixteenToNine) {
    for (const int width : {96, 112, 160, 320}) {
        Stage stage;
        auto* const item = stage.show(QString("VideoThumbnail { width: %1; value: ({videoID: 'a'}) }").arg(width));
        EXPECT_EQ(item->height(), qRound(width * 9 / 16.0)) << width;
    }
}

TEST(VideoThumbnail, keepsThePlaceholderWhenNoPictureComes) {
    using Answer = PictureServer::Answer;
    for (const auto answer : {Answer::garbage, Answer::notFound, Answer::tooLarge}) {
        PictureServer server(answer);
        Stage stage;
        auto* const item = stage.show(thumbnail(server.address()));
        ASSERT_TRUE(stage.becomes([&] { return !server.requests().isEmpty(); }));
        EXPECT_FALSE(QTest::qWaitFor([&] { return item->property("isLoaded").toBool(); }, 200));
        EXPECT_TRUE(showsPlaceholder(stage));
    }
}

TEST(VideoThumbnail, canGoWhileItsPictureIsAwaited) {
    PictureServer server(PictureServer::Answer::nothing);
    {
        Stage stage;
        stage.show(thumbnail(server.address()));
        ASSERT_TRUE(stage.becomes([&] { return !server.requests().isEmpty(); }));
        EXPECT_TRUE(showsPlaceholder(stage));
    }
    QCoreApplication::processEvents();
}

TEST(VideoThumbnail, forgetsThePictureWhenPicturesAreTurnedOff) {
    PictureServer server;
    Stage stage;
    auto* const item = stage.show(thumbnail(server.address()));
    ASSERT_TRUE(stage.becomes([&] { return item->property("isLoaded").toBool(); }));
    item->setProperty("value", QVariantMap{{"videoID", "abc"}});
    EXPECT_FALSE(item->property("isLoaded").toBool());
    EXPECT_TRUE(showsPlaceholder(stage));
    EXPECT_EQ(server.requests().size(), 1);
}

} // namespace
} // namespace kestrio
