# The data files that Kestrel reads: made in build/share/tarn by the target kestrel_data, installed beside the program,
# and the fonts that are part of the services themselves.

set(KESTREL_TARN ${PROJECT_BINARY_DIR}/share/tarn)
set(KESTREL_GENERATED ${PROJECT_BINARY_DIR}/generated)
file(MAKE_DIRECTORY ${KESTREL_TARN}/fonts ${KESTREL_TARN}/Kestrel ${KESTREL_TARN}/samples ${KESTREL_GENERATED})

find_path(KESTREL_OUTLINE_FONTS LiberationMono-Regular.ttf
  PATHS /usr/share/fonts/truetype/liberation2 /usr/share/fonts/liberation-fonts /usr/share/fonts/TTF
  DOC "Directory of the Liberation 2 fonts, which Kestrel's fonts are made from" REQUIRED)

set(kestrel_font_files "")

# kestrel_bitmap_font(OUT FACE LINE_HEIGHT)
function(kestrel_bitmap_font out face line_height)
  set(ttf ${KESTREL_OUTLINE_FONTS}/Liberation${face}.ttf)
  add_custom_command(OUTPUT ${out} COMMAND kestrel-mkfont bitmap ${ttf} ${line_height} ${out}
    DEPENDS kestrel-mkfont ${ttf} VERBATIM)
endfunction()

# The session's bitmap fonts.
foreach(font "mono821b.30 Mono-Bold 30" "mono821b.22 Mono-Bold 22" "mono821.22 Mono-Regular 22"
             "mono821.18 Mono-Regular 18" "mono821.16 Mono-Regular 16" "mono821.14 Mono-Regular 14")
  separate_arguments(font)
  list(GET font 0 name)
  list(GET font 1 face)
  list(GET font 2 line_height)
  kestrel_bitmap_font(${KESTREL_TARN}/fonts/${name} ${face} ${line_height})
  list(APPEND kestrel_font_files ${KESTREL_TARN}/fonts/${name})
endforeach()

# The outline fonts of text in images, under the short names by which the loader looks for them.
foreach(font
    "swiss742 Sans-Regular" "swis742b Sans-Bold" "swis742i Sans-Italic" "swi742bi Sans-BoldItalic"
    "dutch801 Serif-Regular" "dutc801b Serif-Bold" "dutc801i Serif-Italic" "dut801bi Serif-BoldItalic"
    "mono821 Mono-Regular" "mono821b Mono-Bold" "mono821i Mono-Italic" "mon821bi Mono-BoldItalic")
  separate_arguments(font)
  list(GET font 0 name)
  list(GET font 1 face)
  set(ttf ${KESTREL_OUTLINE_FONTS}/Liberation${face}.ttf)
  set(out ${KESTREL_TARN}/fonts/${name}.sf)
  add_custom_command(OUTPUT ${out} COMMAND kestrel-mkfont outline ${ttf} ${out} DEPENDS kestrel-mkfont ${ttf} VERBATIM)
  list(APPEND kestrel_font_files ${out})
endforeach()

# The symbols, under the name that the application asks for and the one that form files name.
foreach(name kestrel.sym GXsym)
  set(out ${KESTREL_TARN}/Kestrel/${name})
  add_custom_command(OUTPUT ${out} COMMAND kestrel-mkfont symbols ${PROJECT_SOURCE_DIR}/data/symbols.txt ${out}
    DEPENDS kestrel-mkfont ${PROJECT_SOURCE_DIR}/data/symbols.txt VERBATIM)
  list(APPEND kestrel_font_files ${out})
endforeach()

# The fonts that are built into the services.
set(embedded "symbols=${KESTREL_TARN}/Kestrel/kestrel.sym" "mono.16=${KESTREL_TARN}/fonts/mono821.16")
set(embedded_files ${KESTREL_TARN}/Kestrel/kestrel.sym ${KESTREL_TARN}/fonts/mono821.16)
foreach(line_height 14 16 18)
  foreach(cut "sans Sans-Regular" "sansb Sans-Bold")
    separate_arguments(cut)
    list(GET cut 0 name)
    list(GET cut 1 face)
    set(out ${KESTREL_GENERATED}/${name}.${line_height})
    kestrel_bitmap_font(${out} ${face} ${line_height})
    list(APPEND embedded "${name}.${line_height}=${out}")
    list(APPEND embedded_files ${out})
  endforeach()
endforeach()
set(builtin_fonts_source ${KESTREL_GENERATED}/builtin_fonts.cpp)
add_custom_command(OUTPUT ${builtin_fonts_source} COMMAND kestrel-mkfont embed ${builtin_fonts_source} ${embedded}
  DEPENDS kestrel-mkfont ${embedded_files} VERBATIM)
add_custom_target(builtin_fonts_source DEPENDS ${builtin_fonts_source})
target_sources(services PRIVATE ${builtin_fonts_source})
add_dependencies(services builtin_fonts_source)

add_custom_target(kestrel_fonts DEPENDS ${kestrel_font_files})
# Two targets may not make the same file at the same time.
add_dependencies(builtin_fonts_source kestrel_fonts)

# The sample pictures, all of one generated landscape.
set(kestrel_samples "")
foreach(name scene.ppm scene_grey.pgm sheet.pbm elevation.pgm scene.nat scene_grey.cot sheet.bin elevation.nat)
  list(APPEND kestrel_samples ${KESTREL_TARN}/samples/${name})
endforeach()
add_custom_command(OUTPUT ${kestrel_samples}
  COMMAND kestrel-mkdata ${KESTREL_TARN}/fonts ${KESTREL_TARN}/samples
  DEPENDS kestrel-mkdata ${kestrel_font_files} VERBATIM)

add_custom_target(kestrel_data ALL DEPENDS ${kestrel_samples})
add_dependencies(kestrel_data kestrel_fonts)

install(DIRECTORY ${KESTREL_TARN}/ DESTINATION ${CMAKE_INSTALL_DATADIR}/kestrel/tarn)
install(FILES ${PROJECT_SOURCE_DIR}/data/kestrel.def DESTINATION ${CMAKE_INSTALL_DATADIR}/kestrel/tarn)
