#include "Model/TokenObstacle.h"

#include <QStringList>

#include "appkit/StringTable.h"
#include "foundation/DispatchQueue.h"

namespace vantro {
namespace {

QString obstacleText(const char* key)
{
    return localizedString("TokenObstacle", key);
}

} // namespace

void TokenObstacle::set(Kind kind, const ServiceFailure& cause)
{
    DispatchQueue::main().async([this, kind, cause] {
        kind_ = kind;
        cause_ = cause;
        NotificationCenter::defaultCenter().post(TokenObstacleChanged);
    });
}

QString TokenObstacle::text() const
{
    if (kind_ == Kind::None)
        return {};
    QStringList lines(obstacleText(kind_ == Kind::SerialNotRead ? "serial_not_read" : "another_pulled_out"));
    if (const QString cause = cause_.sentence(); !cause.isEmpty())
        lines += cause;
    lines += obstacleText("plug_in_again");
    return lines.join(QLatin1Char('\n'));
}

} // namespace vantro
