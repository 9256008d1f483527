" Files *.def of other kinds are left alone: the first line with something but a comment tells.
function! s:Detect() abort
  for line in getline(1, 200)
    if line =~# '^\s*\%(#\|$\)'
      continue
    endif
    if line =~? '^\s*\%(STORABLE\|POID\|STRING\|ARRAY\|SUBSTRUCT\|NUM\|INT\|ENUM\|TIMESTAMP\|BUF\|BINSTR\|EBUF\|DECIMAL\|INT64\)\s'
      set filetype=tav_definitions
      setlocal commentstring=#\ %s
    endif
    return
  endfor
endfunction

autocmd BufNewFile,BufRead *.def call s:Detect()
