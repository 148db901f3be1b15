# Precompiled headers: parsing the Qt and GoogleTest headers is about half of
# every compile, and the machines this builds on have two cores.
#
# zarvane_precompile(target KIND...): KIND is STD (the standard library),
# QT (QtCore), QUICK (QtGui/Qml/Quick) or TEST (GoogleTest and GoogleMock);
# zarvane_precompile(target REUSE other) shares other's header.
function(zarvane_precompile target)
    if(NOT ZARVANE_PCH)
        return()
    endif()
    if(ARGV1 STREQUAL "REUSE")
        target_precompile_headers(${target} REUSE_FROM ${ARGV2})
        return()
    endif()
    set(headers <algorithm> <map> <memory> <sstream> <string> <vector>)
    if("QT" IN_LIST ARGN OR "QUICK" IN_LIST ARGN)
        list(APPEND headers <QObject> <QString> <QVariant> <QMetaObject> <QPointer> <QTimer>)
    endif()
    if("QUICK" IN_LIST ARGN)
        list(APPEND headers <QGuiApplication> <QQmlContext> <QQmlEngine> <QQuickItem>
            <QQuickView> <QAbstractListModel> <QPainter>)
    endif()
    if("TEST" IN_LIST ARGN)
        list(APPEND headers <gtest/gtest.h> <gmock/gmock.h> <chrono> <thread> <functional>)
    endif()
    target_precompile_headers(${target} PRIVATE ${headers})
endfunction()
