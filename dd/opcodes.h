// The operations of a dictionary server. Part of the interface: never renumber.
#ifndef DD_OPCODES_H
#define DD_OPCODES_H

enum {
  TCM_OP_SDK_GET_FLD_SPECS = 575,
  TCM_OP_SDK_SET_FLD_SPECS = 576,
  TCM_OP_SDK_GET_OBJ_SPECS = 577,
  TCM_OP_SDK_SET_OBJ_SPECS = 578,
  TCM_OP_SDK_DEL_FLD_SPECS = 585,
};

// A flag word of TCM_OP_SDK_SET_OBJ_SPECS: check everything, store nothing.
enum { TCM_OPFLG_TRIAL = 128 };

#endif
