# What the library is made of, for those who must know what their programs contain: a bill of materials in SPDX 2.3
# (https://spdx.github.io/spdx-spec/v2.3), with the versions that were there when it was built.

set(bill_packages "")
set(bill_relationships "")

# guigl_bill(<library> <version> <relationship>): one of the libraries that ours are made with.
macro(guigl_bill library version relationship)
    if(NOT "${version}" STREQUAL "")
        string(APPEND bill_packages ",
        {
            \"name\": \"${library}\",
            \"SPDXID\": \"SPDXRef-${library}\",
            \"versionInfo\": \"${version}\",
            \"downloadLocation\": \"NOASSERTION\",
            \"filesAnalyzed\": false
        }")
        string(APPEND bill_relationships ",
        {
            \"spdxElementId\": \"SPDXRef-guigl\",
            \"relationshipType\": \"${relationship}\",
            \"relatedSpdxElement\": \"SPDXRef-${library}\"
        }")
    endif()
endmacro()

guigl_bill(SDL "${SDL${GUIGL_SDL_VERSION}_VERSION}" DYNAMIC_LINK)
guigl_bill(X11 "${X11_VERSION}" DYNAMIC_LINK)
guigl_bill(xcb "${XCB_xcb_VERSION}" DYNAMIC_LINK)
guigl_bill(wayland "${WAYLAND_VERSION}" DYNAMIC_LINK)
guigl_bill(xkbcommon "${XKBCOMMON_VERSION}" DYNAMIC_LINK)
guigl_bill(epoxy "${EPOXY_VERSION}" DYNAMIC_LINK)
guigl_bill(libpng "${PNG_VERSION_STRING}" DYNAMIC_LINK)
guigl_bill(libjpeg "${JPEG_VERSION}" DYNAMIC_LINK)
guigl_bill(harfbuzz "${HARFBUZZ_VERSION}" DYNAMIC_LINK)
guigl_bill(fribidi "${FRIBIDI_VERSION}" DYNAMIC_LINK)
guigl_bill(icu "${ICU_icu-uc_VERSION}" DYNAMIC_LINK)
if(GUIGL_FREETYPE)
    guigl_bill(freetype "${FREETYPE_VERSION}" DYNAMIC_LINK)
    guigl_bill(fontconfig "${FONTCONFIG_VERSION}" DYNAMIC_LINK)
endif()
guigl_bill(glm "${glm_VERSION}" STATIC_LINK) # headers
if(TARGET guigl_qt6)
    guigl_bill(Qt "${Qt6_VERSION}" DYNAMIC_LINK)
endif()
if(TARGET guigl_gtk4)
    guigl_bill(gtk "${GTK4_VERSION}" DYNAMIC_LINK)
endif()

# SOURCE_DATE_EPOCH, where it is set, takes the place of now: two builds have the same bytes.
string(TIMESTAMP bill_time "%Y-%m-%dT%H:%M:%SZ" UTC)
file(CONFIGURE OUTPUT ${guigl_BINARY_DIR}/guigl.spdx.json @ONLY CONTENT [[
{
    "spdxVersion": "SPDX-2.3",
    "dataLicense": "CC0-1.0",
    "SPDXID": "SPDXRef-DOCUMENT",
    "name": "guigl-@guigl_VERSION@",
    "documentNamespace": "https://guigl.invalid/spdx/guigl-@guigl_VERSION@",
    "creationInfo": {
        "created": "@bill_time@",
        "creators": ["Organization: the GuiGL maintainers"]
    },
    "packages": [
        {
            "name": "guigl",
            "SPDXID": "SPDXRef-guigl",
            "versionInfo": "@guigl_VERSION@",
            "supplier": "Organization: the GuiGL maintainers",
            "downloadLocation": "NOASSERTION",
            "filesAnalyzed": false
        }@bill_packages@
    ],
    "relationships": [
        {
            "spdxElementId": "SPDXRef-DOCUMENT",
            "relationshipType": "DESCRIBES",
            "relatedSpdxElement": "SPDXRef-guigl"
        }@bill_relationships@
    ]
}
]])
install(FILES ${guigl_BINARY_DIR}/guigl.spdx.json DESTINATION ${CMAKE_INSTALL_DATADIR}/guigl COMPONENT runtime)
