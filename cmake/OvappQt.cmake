# ovapp_requested_qt(<variable>): sets the variable to the major version of Qt that the calling project
# requests: QT_MAJOR_VERSION if it is set, else the Qt that the project has already found, else
# QT_DEFAULT_MAJOR_VERSION, else empty.
function(ovapp_requested_qt variable)
    set(requested "")
    if(QT_MAJOR_VERSION)
        set(requested ${QT_MAJOR_VERSION})
    elseif(TARGET Qt5::Core AND NOT TARGET Qt6::Core)
        set(requested 5)
    elseif(TARGET Qt6::Core AND NOT TARGET Qt5::Core)
        set(requested 6)
    elseif(QT_DEFAULT_MAJOR_VERSION)
        set(requested ${QT_DEFAULT_MAJOR_VERSION})
    endif()
    set(${variable} "${requested}" PARENT_SCOPE)
endfunction()
