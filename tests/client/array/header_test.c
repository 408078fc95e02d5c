/* SPDX-License-Identifier: MIT */
/* The public header alone, in C99: layouts, values, and a call into every group. */
#include "orb/qxorbclient.h"

#include <stdio.h>
#include <string.h>

static int failures = 0;

#define CHECK(condition)                                                   \
  do {                                                                     \
    if (!(condition)) {                                                    \
      ++failures;                                                          \
      fprintf(stderr, "%s:%d: not: %s\n", __FILE__, __LINE__, #condition); \
    }                                                                      \
  } while (0)

static void checkValues(void) {
  CHECK(orbUNKNOWN_CLASS == -1);
  CHECK(orbUINT8_CLASS == 0);
  CHECK(orbINT8_CLASS == 1);
  CHECK(orbUINT16_CLASS == 2);
  CHECK(orbINT16_CLASS == 3);
  CHECK(orbUINT32_CLASS == 4);
  CHECK(orbINT32_CLASS == 5);
  CHECK(orbUINT64_CLASS == 6);
  CHECK(orbINT64_CLASS == 7);
  CHECK(orbSINGLE_CLASS == 8);
  CHECK(orbDOUBLE_CLASS == 9);
  CHECK(orbLOGICAL_CLASS == 10);
  CHECK(orbCHAR_CLASS == 11);
  CHECK(orbSTRUCT_CLASS == 12);
  CHECK(orbCELL_CLASS == 13);
  CHECK(orbREAL == 0);
  CHECK(orbCOMPLEX == 1);
  CHECK(ORB_OK == 0);
  CHECK(ORB_FAILURE == 1);
  CHECK(ORB_HTTP_ERROR == 0);
  CHECK(ORB_KALDEX_ERROR == 1);
  CHECK(ORB_GENERIC_ERROR == 2);
  CHECK(ORB_CLIENT_1_0 == 0x10000);
  CHECK(ORB_CLIENT_1_1 == 0x10001);
}

static void checkLayouts(void) {
  CHECK(sizeof(orbClassID) == 4);
  CHECK(sizeof(orbComplexity) == 4);
  CHECK(sizeof(orbStatus) == 4);
  CHECK(sizeof(orbErrorType) == 4);

  CHECK(sizeof(orbStackFrame) == 24);
  CHECK(offsetof(orbStackFrame, file) == 0);
  CHECK(offsetof(orbStackFrame, name) == 8);
  CHECK(offsetof(orbStackFrame, line) == 16);

  CHECK(sizeof(orbErrorInfo) == 48);
  CHECK(offsetof(orbErrorInfo, type) == 0);
  CHECK(offsetof(orbErrorInfo, message) == 8);
  CHECK(offsetof(orbErrorInfo, details) == 16);
  CHECK(offsetof(orbErrorInfo, details.http.responseCode) == 16);
  CHECK(offsetof(orbErrorInfo, details.http.responseMessage) == 24);
  CHECK(offsetof(orbErrorInfo, details.kaldex.message) == 16);
  CHECK(offsetof(orbErrorInfo, details.kaldex.identifier) == 24);
  CHECK(offsetof(orbErrorInfo, details.kaldex.stack) == 32);
  CHECK(offsetof(orbErrorInfo, details.kaldex.stackDepth) == 40);
  CHECK(offsetof(orbErrorInfo, details.generic.message) == 16);
}

static void checkTableLayout(void) {
  CHECK(sizeof(orbClientRuntime) == 25 * 8);
  CHECK(offsetof(orbClientRuntime, createConfig) == 0 * 8);
  CHECK(offsetof(orbClientRuntime, destroyConfig) == 1 * 8);
  CHECK(offsetof(orbClientRuntime, setTimeoutSec) == 2 * 8);
  CHECK(offsetof(orbClientRuntime, getTimeoutSec) == 3 * 8);
  CHECK(offsetof(orbClientRuntime, setResponseSizeLimit) == 4 * 8);
  CHECK(offsetof(orbClientRuntime, getResponseSizeLimit) == 5 * 8);
  CHECK(offsetof(orbClientRuntime, createContext) == 6 * 8);
  CHECK(offsetof(orbClientRuntime, destroyContext) == 7 * 8);
  CHECK(offsetof(orbClientRuntime, getLastErrorInfo) == 8 * 8);
  CHECK(offsetof(orbClientRuntime, destroyLastErrorInfo) == 9 * 8);
  CHECK(offsetof(orbClientRuntime, feval) == 10 * 8);
  CHECK(offsetof(orbClientRuntime, setClientCertFile) == 11 * 8);
  CHECK(offsetof(orbClientRuntime, getClientCertFile) == 12 * 8);
  CHECK(offsetof(orbClientRuntime, setClientPrivateKeyFile) == 13 * 8);
  CHECK(offsetof(orbClientRuntime, getClientPrivateKeyFile) == 14 * 8);
  CHECK(offsetof(orbClientRuntime, setClientPrivateKeyPassword) == 15 * 8);
  CHECK(offsetof(orbClientRuntime, getClientPrivateKeyPassword) == 16 * 8);
  CHECK(offsetof(orbClientRuntime, setServerCertFile) == 17 * 8);
  CHECK(offsetof(orbClientRuntime, getServerCertFile) == 18 * 8);
  CHECK(offsetof(orbClientRuntime, setCRLFile) == 19 * 8);
  CHECK(offsetof(orbClientRuntime, getCRLFile) == 20 * 8);
  CHECK(offsetof(orbClientRuntime, setVerifyHost) == 21 * 8);
  CHECK(offsetof(orbClientRuntime, getVerifyHost) == 22 * 8);
  CHECK(offsetof(orbClientRuntime, setVerifyPeer) == 23 * 8);
  CHECK(offsetof(orbClientRuntime, getVerifyPeer) == 24 * 8);
}

static void useTable(void) {
  CHECK(strcmp(orbGetInitializationErrorMessage(), "") == 0);
  orbClientRuntime* runtime = orbInitializeEx(ORB_CLIENT_1_1);
  CHECK(runtime != NULL);
  if (runtime == NULL) return;
  CHECK(orbInitialize() == runtime);

  orbClientConfig* config = NULL;
  CHECK(runtime->createConfig(&config) == ORB_OK);
  CHECK(runtime->getTimeoutSec(config) == 120);
  CHECK(runtime->getResponseSizeLimit(config) == 67108864);
  runtime->setCRLFile(config, "revoked.pem");
  CHECK(strcmp(runtime->getCRLFile(config), "revoked.pem") == 0);
  CHECK(runtime->getVerifyHost(config));

  orbClientContext* context = NULL;
  CHECK(runtime->createContext(&context, config) == ORB_OK);
  CHECK(runtime->feval(context, NULL, 0, NULL, 0, NULL) == ORB_FAILURE);
  orbErrorInfo info;
  runtime->getLastErrorInfo(context, &info);
  CHECK(info.type == ORB_GENERIC_ERROR);
  CHECK(strcmp(info.message, "A generic error was thrown") == 0);
  CHECK(info.details.generic.message != NULL);
  runtime->destroyLastErrorInfo(&info);

  runtime->destroyContext(context);
  runtime->destroyConfig(config);
  orbTerminate();
}

static void useNumbers(void) {
  const orbArray a = orbCreateDoubleMatrix(2, 3, orbCOMPLEX);
  const size_t subs[] = {1, 2};
  const size_t last = orbCalcSingleSubscript(a, 2, subs);
  CHECK(last == 5);
  orbGetPr(a)[last] = 1.5;
  orbGetPi(a)[last] = -1.5;
  CHECK(orbGetM(a) == 2 && orbGetN(a) == 3);
  CHECK(orbIsComplex(a) && orbIsNumeric(a) && !orbIsEmpty(a));

  const size_t dims[] = {3, 2};
  CHECK(orbSetDimensions(a, dims, 2) == 0);
  CHECK(orbGetNumberOfDimensions(a) == 2);
  CHECK(orbGetDimensions(a)[0] == 3);

  const orbArray copy = orbDuplicateArray(a);
  CHECK(((double*)orbGetData(copy))[last] == 1.5);
  CHECK(((double*)orbGetImagData(copy))[last] == -1.5);
  CHECK(orbGetClassID(copy) == orbDOUBLE_CLASS);
  CHECK(orbIsClass(copy, orbGetClassName(copy)));
  CHECK(orbGetElementSize(copy) == sizeof(double));
  orbDestroyArray(copy);
  orbDestroyArray(a);

  const orbArray yes = orbCreateLogicalScalar(true);
  CHECK(orbIsLogicalScalarTrue(yes));
  CHECK(*orbGetLogicals(yes));
  orbDestroyArray(yes);
}

static void useText(void) {
  const orbArray text = orbCreateString("text");
  char buffer[5];
  CHECK(orbGetString(text, buffer, sizeof buffer) == 0);
  CHECK(strcmp(buffer, "text") == 0);
  orbGetChars(text)[0] = 0x00E9;
  char* utf8 = orbArrayToString(text);
  CHECK(utf8 != NULL && strcmp(utf8,
                               "\xC3\xA9"
                               "ext") == 0);
  orbFree(utf8);
  orbDestroyArray(text);
}

static void useContainers(void) {
  const char* fields[] = {"name", "cells"};
  const orbArray s = orbCreateStructMatrix(1, 1, 2, fields);
  const orbArray cell = orbCreateCellMatrix(1, 1);
  const orbArray number = orbCreateDoubleScalar(7);
  orbSetCell(cell, 0, number);
  orbSetField(s, 0, "cells", cell);
  orbDestroyArray(number);
  orbDestroyArray(cell);
  CHECK(orbAddField(s, "more") == 2);
  orbRemoveField(s, 0);
  CHECK(orbGetNumberOfFields(s) == 2);
  CHECK(strcmp(orbGetFieldNameByNumber(s, 1), "more") == 0);

  const orbArray value = orbGetFieldByNumber(s, 0, orbGetFieldNumber(s, "cells"));
  const orbArray element = orbGetCell(value, 0);
  CHECK(orbGetScalar(element) == 7);
  orbDestroyArray(element);
  orbDestroyArray(value);
  orbDestroyArray(s);
}

static void useSparse(void) {
  const orbArray a = orbCreateSparse(2, 2, 1, orbREAL);
  orbGetIr(a)[0] = 1;
  orbGetJc(a)[2] = 1;
  orbSetNzmax(a, 3);
  CHECK(orbGetNzmax(a) == 3);
  CHECK(orbGetIr(a)[0] == 1);
  CHECK(orbIsSparse(a));
  orbDestroyArray(a);
}

int main(void) {
  checkValues();
  checkLayouts();
  checkTableLayout();
  useTable();
  useNumbers();
  useText();
  useContainers();
  useSparse();
  return failures == 0 ? 0 : 1;
}
