#include "appkit/StringTable.h"

#include <memory>

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace vantro {
namespace {

void install(std::unique_ptr<QTranslator> translator)
{
    translator->setParent(QCoreApplication::instance());
    QCoreApplication::installTranslator(translator.release());
}

} // namespace

QString localizedString(const char* table, const char* key)
{
    return QCoreApplication::translate(table, key);
}

void installStringTables(const QString& folder)
{
    auto base = std::make_unique<QTranslator>();
    if (base->load(folder + QStringLiteral("/vantro_en.qm")))
        install(std::move(base));

    auto translated = std::make_unique<QTranslator>();
    if (translated->load(QLocale(), QStringLiteral("vantro"), QStringLiteral("_"), folder))
        install(std::move(translated));
}

} // namespace vantro
