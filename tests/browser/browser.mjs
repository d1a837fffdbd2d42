// One headless browser for all tests, and pages that note what happens to them.

import { mkdirSync } from "node:fs";
import { join } from "node:path";
import { chromium } from "playwright-core";

const screenshots = process.env.TALM_FLOW_SCREENSHOTS ?? "screenshots";
mkdirSync(screenshots, { recursive: true });

let browser = null;

export async function startBrowser() {
  // Every launch has a fresh profile folder.
  browser = await chromium.launch({
    executablePath: process.env.TALM_FLOW_BROWSER ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
           "--disable-component-update", "--disable-sync"],
  });
}

export async function stopBrowser() {
  await browser.close();
}

/** A page, with `requests` (everything but files and its own data), `errors` and `dialogs` as they come. */
export async function newPage(options = {}) {
  const page = await browser.newPage({ viewport: { width: 1360, height: 900 }, ...options });
  page.requests = [];
  page.errors = [];
  page.dialogs = [];
  page.on("request", (request) => {
    if (!/^(file|data|about):/.test(request.url())) page.requests.push(request.url());
  });
  page.on("pageerror", (error) => page.errors.push(error.message));
  page.on("dialog", (dialog) => {
    page.dialogs.push(dialog.message());
    return dialog.dismiss();
  });
  // No test reaches out of this machine, whatever a stored text asks for.
  await page.route(/^(https?|wss?):/, (route) => route.abort());
  return page;
}

export async function screenshot(page, name, options = { fullPage: true }) {
  await page.screenshot({ path: join(screenshots, `${name}.png`), ...options });
}
