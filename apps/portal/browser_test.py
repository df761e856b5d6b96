#!/usr/bin/python3
"""Page tests of the portal in headless chromium: a fresh seeded database, a portal on a
free loopback port, and the browser flow from a new requisition to its receipt.
Screenshots of the main pages go to --out on every run.

    browser_test.py --build build/default --out build/portal-screens
"""
import argparse
import os
import re
import shutil
import sqlite3
import subprocess
import sys
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.common.exceptions import StaleElementReferenceException, WebDriverException
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

failures = []


def check(condition, what):
    print(("ok   " if condition else "FAIL ") + what)
    if not condition:
        failures.append(what)


class Portal:
    def __init__(self, build, work):
        shutil.rmtree(work, ignore_errors=True)
        os.makedirs(work)
        self.db = os.path.join(work, "browser.db")
        subprocess.run([os.path.join(build, "reference", "kxseed"), "--db", self.db,
                        "--users-per-borg", "6", "--parts", "300"], check=True,
                       stdout=subprocess.DEVNULL)
        self.proc = subprocess.Popen(
            [os.path.join(build, "apps", "portal", "kxportal"), "--db", self.db, "--port", "0"],
            stdout=subprocess.PIPE, text=True)
        line = self.proc.stdout.readline()
        match = re.search(r"http://[\d.]+:(\d+)", line)
        if not match:
            self.proc.kill()
            raise SystemExit("the portal did not start: " + line)
        self.url = "http://127.0.0.1:" + match.group(1)

    def query(self, sql):
        with sqlite3.connect(self.db) as con:
            return con.execute(sql).fetchone()[0]

    def stop(self):
        self.proc.terminate()
        self.proc.wait(timeout=10)


def browser():
    options = webdriver.ChromeOptions()
    options.binary_location = "/usr/bin/chromium"
    for arg in ("--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1280,1000",
                "--disable-dev-shm-usage", "--lang=en-US"):
        options.add_argument(arg)
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--build", default="build/default")
    ap.add_argument("--out", default="build/portal-screens")
    args = ap.parse_args()
    # Only this run's screenshots, numbered as this run takes them.
    shutil.rmtree(args.out, ignore_errors=True)
    os.makedirs(args.out)
    portal = Portal(args.build, os.path.join(os.path.dirname(args.out), "portal-browser"))
    driver = browser()
    shot_count = [0]

    def shot(name):
        shot_count[0] += 1
        driver.save_screenshot(os.path.join(args.out, "%02d-%s.png" % (shot_count[0], name)))

    def go(path):
        driver.get(portal.url + path)

    def left(page):
        # The page is gone once its root is stale; chromedriver may instead answer that the
        # node no longer belongs to the document when asked in the middle of the change.
        def gone(_):
            try:
                page.is_enabled()
                return False
            except StaleElementReferenceException:
                return True
            except WebDriverException as e:
                if "does not belong to the document" in str(e):
                    return True
                raise
        return gone

    def submit(element):
        # Waits for the next page, so that checks never read the page being left.
        page = driver.find_element(By.TAG_NAME, "html")
        element.click()
        WebDriverWait(driver, 20).until(left(page))

    def body():
        return driver.find_element(By.TAG_NAME, "body").text

    def fill(name, value, scope=driver):
        box = scope.find_element(By.NAME, name)
        box.clear()
        box.send_keys(value)

    def sign_in(login):
        go("/login")
        fill("login", login)
        fill("password", login + "-pw")
        submit(driver.find_element(By.ID, "signin"))

    def sign_out():
        submit(driver.find_element(By.XPATH, "//button[text()='Sign out']"))

    try:
        requisitioner = "u1_5"
        approver = portal.query("SELECT m.login_id FROM users u JOIN users m ON "
                                "m.sys_user_id = u.manager_id WHERE u.login_id = 'u1_5'")
        go("/reqs")
        check(driver.current_url.endswith("/login"), "signed out, a page leads to sign-in")
        shot("sign-in")
        sign_in(requisitioner)
        check("Today is" in body(), "home shows the home date")
        shot("home")

        go("/reqs")
        check("Requisitions" in driver.title, "requisition list")
        shot("requisitions")

        # A new requisition: a special request first, then a catalog item.
        go("/req/0/add")
        shot("add-items")
        form = driver.find_element(By.XPATH, "//form[contains(@action,'/add/special')]")
        fill("description", "Desk lamp", form)
        fill("supplier_name", "Lamp shop", form)
        fill("qty", "2", form)
        fill("price", "617.25", form)
        submit(form.find_element(By.TAG_NAME, "button"))
        match = re.search(r"/req/(\d+)", driver.current_url)
        check(match is not None and "Item added" in body(), "the first item starts a requisition")
        req = match.group(1)
        go("/req/%s/add?q=pen" % req)
        buttons = driver.find_elements(By.XPATH, "//table//form[contains(@action,'/add/fast')]//button")
        check(len(buttons) > 0, "catalog search finds parts")
        shot("catalog-search")
        if buttons:
            submit(buttons[0])
            check("Item added" in body(), "a catalog part is added")
            row = driver.find_elements(By.XPATH, "//tr[td[text()='2']]//button[text()='Remove']")
            if row:
                submit(row[0])
        fill("name", "<script>alert(1)</script>")
        submit(driver.find_element(By.XPATH, "//button[text()='Rename']"))
        check("<script>alert(1)</script>" in driver.find_element(By.TAG_NAME, "h1").text,
              "a <script> name is shown as text")
        check("$1,234.50" in body(), "the subtotal in US format")
        shot("requisition")

        submit(driver.find_element(By.XPATH, "//button[text()='Submit for approval']"))
        check("Submitted for approval" in body(), "submitted")
        sign_out()

        sign_in(approver)
        go("/approvals")
        shot("approvals")
        link = driver.find_elements(By.XPATH, "//a[contains(@href,'/approve/%s/')]" % req)
        check(len(link) == 1, "the approver sees the requisition waiting")
        submit(link[0])
        shot("approve")
        fill("comments", "Fine by me")
        submit(driver.find_element(By.ID, "approve"))
        check("Approved." in body(), "approved")
        sign_out()

        sign_in(requisitioner)
        go("/req/" + req)
        orders = driver.find_elements(By.XPATH, "//a[starts-with(@href,'/po/')]")
        check(len(orders) >= 1, "the approved requisition shows its order")
        po = re.search(r"/po/(\d+)", orders[0].get_attribute("href")).group(1)
        go("/pos")
        shot("orders")
        go("/po/" + po)
        shot("order")

        go("/receive/" + po)
        fill("cartons", "two")
        line = driver.find_element(By.XPATH, "//input[starts-with(@name,'rq')]")
        line.clear()
        line.send_keys("2")
        submit(driver.find_element(By.ID, "receive"))
        errors = driver.find_elements(By.ID, "cartons-error")
        check(len(errors) == 1 and errors[0].text.strip() != "",
              "a bad carton count is refused next to its field")
        shot("receipt-refused")
        fill("cartons", "1")
        submit(driver.find_element(By.ID, "receive"))
        check("recorded" in body(), "the receipt is recorded")
        check(portal.query("SELECT COUNT(*) FROM receipts WHERE po_id = " + po) == 1,
              "exactly one receipt stored")
        shot("receipts")

        # Reports: parameters and columns under the labels people read.
        go("/reports")
        check("From" in [e.text for e in driver.find_elements(By.TAG_NAME, "label")],
              "report parameters have readable labels")
        shot("reports")
        form = driver.find_element(By.XPATH, "//form[@action='/report/1']")
        submit(form.find_element(By.XPATH, ".//button[text()='Show']"))
        headings = [e.text for e in driver.find_elements(By.TAG_NAME, "th")]
        check("Requisition name" in headings and "ReqID" not in headings,
              "report headings are readable: %s" % ", ".join(headings))
        check(len(driver.find_elements(By.XPATH, "//a[text()='Download CSV']")) == 1,
              "the shown report links its file")
        shot("report")

        # German: formats everywhere.
        go("/prefs")
        driver.find_element(By.XPATH, "//select[@name='locale']/option[@value='1031']").click()
        submit(driver.find_element(By.ID, "saveprefs"))
        check(re.search(r"\d{1,2}\.\d{1,2}\.\d{4}", driver.find_element(By.ID, "prefdate").text),
              "German date on the preferences page")
        shot("preferences-german")
        go("/req/" + req)
        check("1.234,50" in body(), "the subtotal as 1.234,50")
        check(re.search(r"\d{1,2}\.\d{1,2}\.\d{4}", body()) is not None, "German dates on the requisition")
        shot("requisition-german")
        go("/reqs")
        check(re.search(r"\d{1,2}\.\d{1,2}\.\d{4}", body()) is not None, "German dates in the list")

        # A form without its token is refused: the browser posts a page whose token was removed.
        go("/req/0/add")
        driver.execute_script(
            "document.querySelectorAll('input[name=csrf]').forEach(e => e.remove());")
        form = driver.find_element(By.XPATH, "//form[contains(@action,'/add/fast')]")
        fill("part", "X", form)
        submit(form.find_element(By.TAG_NAME, "button"))
        check("security token" in body(), "a form without its CSRF token is refused")
        shot("csrf-refused")
    finally:
        driver.quit()
        portal.stop()
    print("screenshots in", args.out)
    if failures:
        print("%d browser checks failed" % len(failures))
        sys.exit(1)


if __name__ == "__main__":
    main()
