# Headers that nearly every file of a kind includes, parsed once. A file still includes what it uses:
# the fuzz preset builds without them, so that a missing include is found there.
#
# One precompiled header for each combination of compile definitions; a floor or a test names its own.

# txs_add_prelude(NAME [LINKS ...] HEADERS ...): precompiles the headers for those who reuse NAME.
function(txs_add_prelude name)
  cmake_parse_arguments(arg "" "" "LINKS;HEADERS" ${ARGN})
  add_library(${name} OBJECT ${CMAKE_SOURCE_DIR}/cmake/prelude.cpp)
  target_link_libraries(${name} PRIVATE txs_options ${arg_LINKS})
  target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# txs_use_prelude(TARGET PRELUDE)
function(txs_use_prelude target prelude)
  if(TXS_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ${prelude})
  endif()
endfunction()

set(txs_standard_headers <algorithm> <array> <chrono> <cmath> <cstdint> <filesystem> <functional>
  <map> <memory> <optional> <span> <string> <string_view> <vector>)
set(txs_core_headers ${txs_standard_headers} <QByteArray> <QDir> <QFileInfo> <QString>)
set(txs_gui_headers ${txs_standard_headers}
  <QByteArray> <QDir> <QGuiApplication> <QImage> <QPainter> <QPainterPath> <QString> <QTransform>)
set(txs_widgets_headers ${txs_gui_headers}
  <QAction> <QApplication> <QBoxLayout> <QComboBox> <QDialog> <QGridLayout> <QKeyEvent> <QLabel>
  <QLineEdit> <QMenu> <QPushButton> <QTimer> <QTreeWidget>)

if(TXS_PRECOMPILE)
  txs_add_prelude(txs_standard_prelude HEADERS ${txs_standard_headers})
  txs_add_prelude(txs_core_prelude LINKS Qt6::Core HEADERS ${txs_core_headers})
  txs_add_prelude(txs_gui_prelude LINKS Qt6::Gui HEADERS ${txs_gui_headers})
  txs_add_prelude(txs_widgets_prelude LINKS Qt6::Widgets HEADERS ${txs_widgets_headers})
endif()
