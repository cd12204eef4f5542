# The program of the page: tarnwick.mjs and tarnwick.wasm. The game waits in the middle of its loops. Asyncify lets the
# browser do its own work there, so the page needs no thread and any server of files will do. ASYNCIFY_IMPORTS names the
# functions of page_calls.h that wait.
target_link_options(tarnwick PRIVATE
    --js-library ${CMAKE_SOURCE_DIR}/host/backends/web/page_calls.js
    -sASYNCIFY -sASYNCIFY_IMPORTS=pageNap,pageSleepUntil,pageWait,pageBringFile,pageShowMessage -sASYNCIFY_STACK_SIZE=65536
    -sMODULARIZE -sEXPORT_ES6 -sUSE_ES6_IMPORT_META=0 -sEXPORT_NAME=createTarnwick -sENVIRONMENT=web,node
    -sEXPORTED_RUNTIME_METHODS=FS,ccall,callMain -sINVOKE_RUN=0 -sEXIT_RUNTIME
    -sMIN_WEBGL_VERSION=2 -sMAX_WEBGL_VERSION=2 -sALLOW_MEMORY_GROWTH -sINITIAL_MEMORY=67108864
    -sSTACK_OVERFLOW_CHECK=1)
set_target_properties(tarnwick PROPERTIES SUFFIX .mjs LINK_DEPENDS ${CMAKE_SOURCE_DIR}/host/backends/web/page_calls.js)
