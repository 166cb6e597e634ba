#include "appkit/StringTable.h"

#include <memory>
#include <utility>

#include <QByteArray>
#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <QWidget>

namespace vantro {
namespace {

void install(std::unique_ptr<QTranslator> translator)
{
    translator->setParent(QCoreApplication::instance());
    QCoreApplication::installTranslator(translator.release());
}

/// The toolkit's texts, as in the menu of a scroll bar or in what a screen reader says that a button does. They also
/// say which way the language is written, so they are taken for the language that the tables are in and for no other.
void installToolkitTexts(const QLocale& language)
{
    auto translator = std::make_unique<QTranslator>();
    if (translator->load(language, QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        install(std::move(translator));
}

} // namespace

QString localizedString(const char* table, const char* key)
{
    return QCoreApplication::translate(table, key);
}

QString localizedString(const char* table, const char* key, int count)
{
    return QCoreApplication::translate(table, key, nullptr, count);
}

void localizeForm(const QWidget& view, const char* table)
{
    for (auto* const widget : view.findChildren<QWidget*>()) {
        for (const char* const property : {"text", "accessibleName", "accessibleDescription"}) {
            const QByteArray key = widget->property(property).toString().toUtf8();
            if (!key.isEmpty())
                widget->setProperty(property, localizedString(table, key.constData()));
        }
    }
}

void installStringTables(const QString& folder)
{
    auto base = std::make_unique<QTranslator>();
    if (base->load(folder + QStringLiteral("/vantro_en.qm")))
        install(std::move(base));

    // As everywhere on the system, a list of languages does not count in the C locale.
    const QLocale user;
    if (user.language() == QLocale::C)
        return;
    auto translated = std::make_unique<QTranslator>();
    if (!translated->load(user, QStringLiteral("vantro"), QStringLiteral("_"), folder))
        return;
    installToolkitTexts(QLocale(translated->language()));
    install(std::move(translated));
}

} // namespace vantro
