/* Counts the fields of the dictionary that tav.conf names: a program of somebody else's, in C. */
#include <dd/vantor.h>
#include <stdio.h>

int main(void) {
  tav_ebuf ebuf = {0};
  tcm_context_t* context = NULL;
  uint64_t database = 0;
  tcm_connect(&context, &database, &ebuf);
  tav_flist_t* input = tav_flist_create(&ebuf);
  tav_flist_t* output = NULL;
  tav_poid_t* target = tav_poid_create(database, "/dd/fields", 0, &ebuf);
  tavi_flist_put(input, TAV_FLD_POID, 0, 0, target, &ebuf);
  tcm_op(context, TCM_OP_SDK_GET_FLD_SPECS, 0, input, &output, &ebuf);
  printf("%d\n", (int)tav_flist_elem_count(output, TAV_FLD_FIELD, &ebuf));
  tav_flist_destroy(input, NULL);
  tav_flist_destroy(output, NULL);
  tcm_context_close(context, 0, NULL);
  return ebuf.err_code;
}
