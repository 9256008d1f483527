" Vim syntax file: definitions of a data dictionary (tav_definitions(5))
" The keywords are those of dparse/dparse_tokens.h, in a group for each part that they play.
if exists('b:current_syntax')
  finish
endif

syntax case ignore
" A word ends at a blank or at one of ; = { } and nowhere else.
syntax iskeyword 33,35-58,60,62-122,124,126,128-255

syntax keyword tavStructure STORABLE CLASS IMPLEMENTATION
syntax keyword tavType POID STRING ARRAY SUBSTRUCT NUM INT UINT ENUM TIMESTAMP BUF BINSTR EBUF
syntax keyword tavType OBJ DECIMAL INT64
syntax keyword tavAttribute ID SEQ_START LABEL READ_ACCESS WRITE_ACCESS CREATE_ACCESS DESCR
syntax keyword tavAttribute IS_PARTITIONED PARTITION_MODE RESIDENCY_TYPE AUDIT_SCHEME EVENT_TYPE
syntax keyword tavAttribute VIRTUAL_FLAG ORDER LENGTH CREATE MODIFY AUDITABLE ENCRYPTABLE
syntax keyword tavAttribute SERIALIZABLE QUERYABLE_ON_AUDIT IGNORE_ON_AUDIT SQL_TABLE SQL_COLUMN
syntax keyword tavAttribute SQL_COLUMN_PREFIX SQL_STORAGE LOCATION ATTRVAL ENTRY_TYPE
syntax keyword tavAttribute LINK_OBJECT ATTRIBUTE MULTIVALUED RDN_PIECE LINK_ATTRIBUTE
syntax keyword tavAttribute OBJECTCLASS
syntax keyword tavValue SELF BRANDLINEAGE BRAND ANCESTRALLINEAGE GLOBAL ROOT ANY BRANDOWNER
syntax keyword tavValue FINITE HISTORIC COMPACTED EXPANDED REQUIRED OPTIONAL PROHIBITED SYSTEM
syntax keyword tavValue WRITEABLE WRITABLE NOT_WRITEABLE NOT_WRITABLE YES NO

" The names of implementations are exact.
syntax match tavImplementation "\C\<\%(TESSEL7\|SQLGENERIC\|SQLSERVER7\|LDAPV3\)\>"
syntax match tavClass "\%(^\|[[:space:];={}]\)\@1<=/[^[:space:];={}]*"
syntax match tavNumber "\%(^\|[[:space:];={}]\)\@1<=[-+]\=\d\+\%(\.\d*\)\=\%($\|[[:space:];={}]\)\@="
syntax match tavDelimiter "[{}=;]"
" A comment and a string begin where a token could; elsewhere # and quotes belong to a word.
syntax match tavComment +\%(^\|[[:space:];={}"]\)\@1<=#.*$+ contains=@Spell
syntax match tavEscape "\\[nt]" contained
syntax match tavString +\%(^\|[[:space:];={}"]\)\@1<="[^"]*"+ contains=tavEscape,@Spell
syntax match tavUnclosed +\%(^\|[[:space:];={}"]\)\@1<="[^"]*$+

highlight default link tavStructure Statement
highlight default link tavType Type
highlight default link tavAttribute Identifier
highlight default link tavValue Constant
highlight default link tavImplementation Special
highlight default link tavClass Function
highlight default link tavNumber Number
highlight default link tavDelimiter Delimiter
highlight default link tavComment Comment
highlight default link tavEscape SpecialChar
highlight default link tavString String
highlight default link tavUnclosed Error

let b:current_syntax = 'tav_definitions'
