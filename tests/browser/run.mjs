// All tests in a browser, in one process on one browser and one database.

import { after, before } from "node:test";
import { startBrowser, stopBrowser } from "./browser.mjs";
import { drawingTests, prepareFlows } from "./drawing.test.mjs";
import { listTests, prepareLists } from "./lists.test.mjs";
import { TalmFlow } from "./talmflow.mjs";

const talmflow = new TalmFlow();
prepareFlows(talmflow, process.env.TALM_FLOW_EXAMPLES);
const flows = prepareLists(talmflow);

before(startBrowser);
after(async () => {
  await stopBrowser();
  talmflow.remove();
});

drawingTests(talmflow);
listTests(talmflow, flows);
