// Where the person points in the strips of days, by pointer or by keys, and what is said of that moment. One object for
// all strips of a view; each strip tells it of the pointer and hears from it what to mark. Main queue.
#pragma once

#include "Kestrio/Views/Charts/ChartValues.h"

#include <QObject>

namespace kestrio {

class StripPointer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(kestrio::DayStripsValue strips READ strips WRITE setStrips NOTIFY stripsChanged)
    Q_PROPERTY(bool isPointing READ isPointing NOTIFY readoutChanged)
    /// Whether the readout is of a session, else it is a note.
    Q_PROPERTY(bool isSession READ isSession NOTIFY readoutChanged)
    // Of a note:
    Q_PROPERTY(QString symbol READ symbol NOTIFY readoutChanged)
    Q_PROPERTY(QString text READ text NOTIFY readoutChanged)
    // Of a session:
    Q_PROPERTY(QString bundleID READ bundleID NOTIFY readoutChanged)
    Q_PROPERTY(QString appName READ appName NOTIFY readoutChanged)
    Q_PROPERTY(QString title READ title NOTIFY readoutChanged)
    Q_PROPERTY(QVariantMap category READ category NOTIFY readoutChanged)
    Q_PROPERTY(QString times READ times NOTIFY readoutChanged)
    /// The readout, or while nobody points the strips, for somebody who does not see them.
    Q_PROPERTY(QString words READ words NOTIFY readoutChanged)

public:
    explicit StripPointer(QObject* parent = nullptr);

    DayStripsValue strips() const { return strips_; }
    void setStrips(const DayStripsValue& strips);

    bool isPointing() const { return hover_.has_value(); }
    bool isSession() const { return std::holds_alternative<ReadoutSession>(readout_); }
    QString symbol() const;
    QString text() const;
    QString bundleID() const;
    QString appName() const;
    QString title() const;
    QVariantMap category() const;
    QString times() const;
    QString words() const;

    const std::optional<StripHover>& hover() const { return hover_; }

    /// The pointer is over a strip, `x` points from its left, the strip being `width` points wide.
    void moveTo(int day, bool isAlongside, qreal x, qreal width);

    /// The pointer has left a strip. Nothing happens when it is over another by now.
    void leave(int day, bool isAlongside);

    /// Goes where an arrow, Home or End leads, or away with Escape. False for other keys.
    Q_INVOKABLE bool press(int key);
    Q_INVOKABLE void clear() { point(std::nullopt); }

Q_SIGNALS:
    void stripsChanged();
    void hoverChanged();
    void readoutChanged();

private:
    const DayStrips::Day* day(int index) const;
    void point(std::optional<StripHover> hover);
    void read();

    DayStripsValue strips_;
    std::optional<StripHover> hover_;
    qreal width_ = 800; // of the strip that was last pointed at
    StripReadout readout_;
};

} // namespace kestrio
