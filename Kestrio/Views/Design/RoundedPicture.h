// A picture from the web with rounded corners, cut to fill its place. It is fetched when the source is set, and kept
// nowhere else; nothing is asked for without a source. Main thread.
#pragma once

#include <QtCore/QUrl>
#include <QtGui/QImage>
#include <QtNetwork/QNetworkReply>
#include <QtQuick/QQuickPaintedItem>
#include <memory>

namespace kestrio {

class RoundedPicture : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY radiusChanged)
    Q_PROPERTY(bool isLoaded READ isLoaded NOTIFY isLoadedChanged)

public:
    static constexpr qint64 mostBytes = 1024 * 1024; // a larger answer is no small picture and is not awaited
    static constexpr int deadline = 10'000;          // milliseconds without any progress

    explicit RoundedPicture(QQuickItem* parent = nullptr);
    ~RoundedPicture() override;

    QUrl source() const { return source_; }
    void setSource(const QUrl& source);
    double radius() const { return radius_; }
    void setRadius(double radius);
    bool isLoaded() const { return !picture_.isNull(); }

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void sourceChanged();
    void radiusChanged();
    void isLoadedChanged();

private:
    struct Discard {
        void operator()(QNetworkReply* reply) const;
    };

    void componentComplete() override;
    void request();
    void receive();
    void show(QImage picture);

    QUrl source_;
    double radius_ = 0;
    QImage picture_;
    std::unique_ptr<QNetworkReply, Discard> reply_;
};

} // namespace kestrio
