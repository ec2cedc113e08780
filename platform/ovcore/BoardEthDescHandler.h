#pragma once

#include <ovcore_export.h>

namespace Core {

/// The description of the control board in use. Main thread only.
class OVCORE_EXPORT BoardEthDescHandler
{
public:
    /// Creates the object. The current board type is the setting "Board/type", or 1 if the setting
    /// is missing or not a number. Does nothing if the object exists.
    static void init();
    /// Deletes the object; does nothing if there is none.
    static void destruct();
    /// Returns the object; null before `init` and after `destruct`.
    static BoardEthDescHandler* instance();

    /// Returns the type of the board in use: a bit mask, which is compared with the mask of each
    /// plug-in.
    int currentBoardEthDescType() const;
    /// Changes the type for this run; the setting is unchanged.
    void setCurrentBoardEthDescType(int type);

private:
    BoardEthDescHandler();
    ~BoardEthDescHandler() = default;

    static OVCORE_NO_EXPORT BoardEthDescHandler* _p_instance;

    int _currentType;
};

} // namespace Core
