#include <ovcore/BoardEthDescHandler.h>

#include <ovcore/Settings.h>

namespace Core {

namespace {

int storedBoardType()
{
    constexpr int defaultType = 1;
    bool isNumber = false;
    const int type =
        Settings::instance().value(QStringLiteral("Board/type"), defaultType).toInt(&isNumber);
    return isNumber ? type : defaultType;
}

} // namespace

BoardEthDescHandler* BoardEthDescHandler::_p_instance = nullptr;

void BoardEthDescHandler::init()
{
    if (!_p_instance)
        _p_instance = new BoardEthDescHandler;
}

void BoardEthDescHandler::destruct()
{
    delete _p_instance;
    _p_instance = nullptr;
}

BoardEthDescHandler* BoardEthDescHandler::instance()
{
    return _p_instance;
}

BoardEthDescHandler::BoardEthDescHandler() : _currentType(storedBoardType())
{
}

int BoardEthDescHandler::currentBoardEthDescType() const
{
    return _currentType;
}

void BoardEthDescHandler::setCurrentBoardEthDescType(int type)
{
    _currentType = type;
}

} // namespace Core
