// The tab "Categories" as QML reads it. Belongs to the main queue.
#pragma once

#include "Kestrio/Pages/Settings/CategorySettings.h"
#include "Kestrio/Views/Values/SettingValues.h"
#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"
#include "Kestrio/Views/Window/ValueRows.h"

namespace kestrio {

class CategorySettingsModel final : public kestrio::SettingsTabModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")
    /// Two, each with `title` and `isCurrent`.
    Q_PROPERTY(QVariantList kinds READ kinds NOTIFY changed)
    Q_PROPERTY(bool isAboutWebsites READ isAboutWebsites NOTIFY changed)
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY changed)
    /// Each with `id`, `icon`, `title`, `time` and `menu`.
    Q_PROPERTY(kestrio::RowList* rows READ rows CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    /// The menu of the category of a website that is about to be added.
    Q_PROPERTY(QVariant newCategory READ newCategory NOTIFY changed)
    /// `help`, `kindsName`, `domainPrompt`, `addTitle`.
    Q_PROPERTY(QVariant words READ words CONSTANT)

public:
    explicit CategorySettingsModel(const WindowParts& parts);

    QVariantList kinds() const;
    bool isAboutWebsites() const { return kind_ == CategorySettings::Kind::websites; }
    QString filter() const { return filter_; }
    void setFilter(const QString& filter);
    RowList* rows() { return &rows_; }
    QString emptyText() const;
    QVariant newCategory() const;
    static QVariantMap words();

    Q_INVOKABLE void chooseKind(int place);
    /// Sets the category by its raw text, or takes the person's choice back when it is undefined.
    Q_INVOKABLE void setCategory(const QString& id, const QVariant& category);
    Q_INVOKABLE void chooseNewCategory(const QVariant& category);
    Q_INVOKABLE static bool canAdd(const QString& domain);
    Q_INVOKABLE void add(const QString& domain);

Q_SIGNALS:
    void changed();

private:
    void load();
    void look();

    CategorySettings::Kind kind_ = CategorySettings::Kind::apps;
    QString filter_;
    ActivityCategory newCategory_ = allActivityCategories.front();
    std::vector<CategorySettings::Known> apps_;
    std::vector<CategorySettings::Known> websites_;
    ValueRows<CategorySettings::Row> rows_;
    Subscription appsAsked_;
    Subscription websitesAsked_;
    std::vector<Subscription> tokens_;
};

} // namespace kestrio
