#pragma once

#include <ovcore_export.h>

namespace Core {

/// The description of the control board in use. Main thread only.
class OVCORE_EXPORT BoardEthDescHandler
{
public:
    /// Creates the service; the current board type is the setting "Board/type", 1 when it is
    /// absent or no number. Does nothing while the service exists.
    static void init();
    /// Deletes the service; does nothing when there is none.
    static void destruct();
    /// The service, or null before `init` and after `destruct`.
    static BoardEthDescHandler* instance();

    /// The type of the board in use: a set of bits, compared with a plug-in's mask.
    int currentBoardEthDescType() const;
    /// Changes the type for this run; the setting stays as it is.
    void setCurrentBoardEthDescType(int type);

private:
    BoardEthDescHandler();
    ~BoardEthDescHandler() = default;

    static OVCORE_NO_EXPORT BoardEthDescHandler* _p_instance;

    int _currentType;
};

} // namespace Core
