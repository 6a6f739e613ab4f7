# cmake -DFOLDER= -DOUT= -P: writes the resource file of the program's pictures. Icons are PNG files
# in each size, listed by an icon group (3 and 14 are the published numbers of these types), which
# tells how many bytes each has. Drawings are plain data (10), in the numbers that
# app/platform/windows/ui/pictures.cc looks for.
set(entries "")
set(icons "")
set(count 0)
foreach(size 16 20 24 32 40 48 64 128 256)
  math(EXPR count "${count} + 1")
  set(file ${FOLDER}/icon/128/${size}.png)
  file(SIZE ${file} bytes)
  math(EXPR side "${size} % 256")
  math(EXPR sides "${side} + ${side} * 256")
  string(APPEND icons "${count} 3 \"${file}\"\n")
  string(APPEND entries ",\n  ${sides}, 0, 1, 32, ${bytes}L, ${count}")
endforeach()
set(drawings "")
foreach(number 145 146 148)
  foreach(scale 1 2 3)
    string(APPEND drawings "${number}${scale} 10 \"${FOLDER}/bitmap/${number}@${scale}x.png\"\n")
  endforeach()
endforeach()
file(WRITE ${OUT} "${icons}128 14 {\n  0, 1, ${count}${entries}\n}\n${drawings}")
